#include "simulation/Event.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {

namespace {

template <class Number> void appendNumber(std::string& line, Number number)
{
    char digits[32];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    line.append(digits, end);
}

void appendText(std::string& line, const std::string& text)
{
    const nlohmann::json value(text);
    line += value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

struct ValueWriter {
    std::string& line;

    void operator()(std::monostate) const { line += "null"; }
    void operator()(bool value) const { line += value ? "true" : "false"; }
    void operator()(std::int64_t value) const { appendNumber(line, value); }
    void operator()(double value) const
    {
        if (!std::isfinite(value)) {
            line += "null";
            return;
        }
        appendNumber(line, value);
    }
    void operator()(const std::string& value) const { appendText(line, value); }
};

} // namespace

const Event::Value* Event::find(std::string_view field) const
{
    const auto found = std::ranges::find_if(fields, [&](const auto& entry) { return entry.first == field; });
    return found == fields.end() ? nullptr : &found->second;
}

std::string_view Event::text(std::string_view field) const
{
    const Value* value = find(field);
    const auto* text = value == nullptr ? nullptr : std::get_if<std::string>(value);
    return text == nullptr ? std::string_view{} : std::string_view{*text};
}

void Event::read(std::string_view field, bool& value) const
{
    const Value* const found = find(field);
    if (const bool* const flag = found == nullptr ? nullptr : std::get_if<bool>(found)) {
        value = *flag;
    }
}

void Event::read(std::string_view field, std::int64_t& value) const
{
    const Value* const found = find(field);
    if (const auto* const whole = found == nullptr ? nullptr : std::get_if<std::int64_t>(found)) {
        value = *whole;
    }
}

void Event::read(std::string_view field, double& value) const
{
    const Value* const found = find(field);
    if (const auto* const real = found == nullptr ? nullptr : std::get_if<double>(found)) {
        value = *real;
    } else if (const auto* const whole = found == nullptr ? nullptr : std::get_if<std::int64_t>(found)) {
        value = static_cast<double>(*whole);
    }
}

std::string jsonLine(const Event& event)
{
    std::string line = "{\"at\": ";
    const ValueWriter write{line};
    write(event.at);
    line += ", \"event\": ";
    write(event.name);
    for (const auto& [field, value] : event.fields) {
        line += ", ";
        appendText(line, field);
        line += ": ";
        std::visit(write, value);
    }
    line += '}';
    return line;
}

} // namespace sentrel::simulation
