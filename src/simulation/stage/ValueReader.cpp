#include "simulation/stage/ValueReader.hpp"

#include "simulation/stage/TextFile.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <set>
#include <system_error>

namespace sentrel::simulation {

namespace {

std::string kindOf(const YamlValue& value)
{
    switch (value.kind) {
    case YamlValue::Kind::null:
        return "nothing";
    case YamlValue::Kind::plain:
        return inQuotes(value.text);
    case YamlValue::Kind::quoted:
        return "the text " + inQuotes(value.text);
    case YamlValue::Kind::list:
        return "a list";
    case YamlValue::Kind::map:
        return "a map";
    }
    return "something else";
}

[[noreturn]] void refuse(const YamlValue& value, std::string_view what, std::string_view wanted)
{
    throw SourceFault(value.line, std::string{what} + " must be " + std::string{wanted} + ", not " + kindOf(value));
}

std::string shortNumber(double number)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

/// The Boolean that the word means in YAML 1.1.
std::optional<bool> oldFlag(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    if (text == "yes" || text == "on" || text == "y" || text == "true") {
        return true;
    }
    if (text == "no" || text == "off" || text == "n" || text == "false") {
        return false;
    }
    return std::nullopt;
}

/// The whole text as a number; none for anything else, infinite if too large.
std::optional<double> parseNumber(std::string_view text)
{
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    const bool startsWell =
        !text.empty() && (text.front() == '-' || text.front() == '.' || (text.front() >= '0' && text.front() <= '9'));
    if (!startsWell) {
        return std::nullopt;
    }
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size()) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
        return std::numeric_limits<double>::infinity();
    }
    return error == std::errc{} ? std::optional{number} : std::nullopt;
}

struct Unit {
    std::string_view name;
    double nanoseconds;
    std::string_view shortName = name;
};

// The long names aren't valid; they give `3min` the hint `m`.
constexpr std::array<Unit, 14> units{{
    {"ms", 1e6},
    {"s", 1e9},
    {"m", 60e9},
    {"h", 3600e9},
    {"msec", 0, "ms"},
    {"millis", 0, "ms"},
    {"milliseconds", 0, "ms"},
    {"sec", 0, "s"},
    {"seconds", 0, "s"},
    {"min", 0, "m"},
    {"minutes", 0, "m"},
    {"hr", 0, "h"},
    {"hours", 0, "h"},
    {"d", 0, "h"},
}};

double unitOf(const YamlValue& value, std::string_view name)
{
    std::array<std::string_view, units.size()> names;
    std::ranges::transform(units, names.begin(), [](const Unit& unit) { return unit.name; });
    const std::string_view nearest = nearestWord(name, names);
    const auto unit = std::ranges::find_if(units, [&](const Unit& each) { return each.name == nearest; });
    if (unit->name != name || unit->nanoseconds == 0) {
        throw SourceFault(value.line, "unknown unit " + inQuotes(name) + " in the time " + inQuotes(value.text) +
                                          "; did you mean " + inQuotes(unit->shortName) +
                                          "? (units are ms, s, m and h)");
    }
    return unit->nanoseconds;
}

} // namespace

bool isNone(const YamlValue& value)
{
    return value.isNull() || (value.isScalar() && value.text == "none");
}

bool readFlag(const YamlValue& value, std::string_view what)
{
    const bool isPlain = value.kind == YamlValue::Kind::plain;
    if (isPlain && (value.text == "true" || value.text == "false")) {
        return value.text == "true";
    }
    if (const auto meant = value.isScalar() ? oldFlag(value.text) : std::nullopt) {
        const std::string_view right = *meant ? "true" : "false";
        throw SourceFault(value.line, std::string{what} + " must be true or false: write " + std::string{right} +
                                          " instead of " + kindOf(value));
    }
    refuse(value, what, "true or false");
}

double readNumber(const YamlValue& value, std::string_view what)
{
    const auto number = value.kind == YamlValue::Kind::plain ? parseNumber(value.text) : std::nullopt;
    if (number && !std::isfinite(*number)) {
        throw SourceFault(value.line, std::string{what} + " is too large or too small: " + kindOf(value));
    }
    if (number) {
        return *number;
    }
    if (value.kind == YamlValue::Kind::quoted && parseNumber(value.text)) {
        throw SourceFault(value.line, std::string{what} + " must be a number: write " + value.text + " without quotes");
    }
    refuse(value, what, "a number");
}

double readNumber(const YamlValue& value, std::string_view what, double least, double most)
{
    const double number = readNumber(value, what);
    if (number < least || number > most) {
        refuse(value, what, "from " + shortNumber(least) + " to " + shortNumber(most));
    }
    return number;
}

std::uint32_t readWhole(const YamlValue& value, std::string_view what, std::uint32_t least, std::uint32_t most)
{
    const double number = readNumber(value, what);
    if (number < least || number > most || number != std::floor(number)) {
        refuse(value, what, "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return static_cast<std::uint32_t>(number);
}

std::string readText(const YamlValue& value, std::string_view what)
{
    if (!value.isScalar() || value.text.empty()) {
        refuse(value, what, "text");
    }
    return value.text;
}

std::optional<std::string> readOptionalText(const YamlValue& value, std::string_view what)
{
    return isNone(value) ? std::nullopt : std::optional{readText(value, what)};
}

std::uint32_t readDevice(const YamlValue& value)
{
    return readWhole(value, "the number of an audio device", 2, std::numeric_limits<std::uint32_t>::max());
}

std::optional<std::uint32_t> readOptionalDevice(const YamlValue& value)
{
    return isNone(value) ? std::nullopt : std::optional{readDevice(value)};
}

namespace {

/// The span in the text, which is all or part of the value's.
Duration spanOf(const YamlValue& value, std::string_view text, std::string_view what, std::string_view wanted)
{
    if (!text.empty() && text.front() == '-') {
        throw SourceFault(value.line, "a time can't be negative: " + inQuotes(value.text));
    }
    const std::size_t digits = std::min(text.find_first_not_of("0123456789."), text.size());
    const auto number = parseNumber(text.substr(0, digits));
    if (!number) {
        refuse(value, what, wanted);
    }
    if (digits == text.size()) {
        throw SourceFault(value.line, "the time " + inQuotes(value.text) + " has no unit: write for example " +
                                          inQuotes(std::string{text.substr(0, 12)} + "s") +
                                          " (units are ms, s, m and h)");
    }
    const double nanoseconds = *number * unitOf(value, text.substr(digits));
    if (!(nanoseconds <= static_cast<double>(longestScenario.count()))) {
        throw SourceFault(value.line,
                          "the time " + inQuotes(value.text) + " is too long: a scenario ends after 366 days");
    }
    return Duration{std::llround(nanoseconds)};
}

std::string_view scalarText(const YamlValue& value)
{
    return value.isScalar() ? std::string_view{value.text} : std::string_view{};
}

} // namespace

StepTime readStepTime(const YamlValue& value)
{
    std::string_view text = scalarText(value);
    StepTime time;
    if (!text.empty() && text.front() == '+') {
        time.isRelative = true;
        text.remove_prefix(1);
    }
    time.span = spanOf(value, text, "'at'", "a time such as 3s, 500ms, 2m, 1h or +1s");
    return time;
}

Duration readSpan(const YamlValue& value, std::string_view what)
{
    return spanOf(value, scalarText(value), what, "a time such as 6s or 500ms");
}

std::filesystem::path readPath(const YamlValue& value, std::string_view what, const ReadContext& context)
{
    const std::filesystem::path path = context.folder / readText(value, what);
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        throw SourceFault(value.line, std::string{what} + " " + inQuotes(value.text) +
                                          " doesn't exist (paths are relative to the scenario)");
    }
    return path;
}

Bytes readFileContent(const YamlValue& value, std::string_view what, const ReadContext& context)
{
    constexpr std::size_t mostBytes = 64UL * 1024 * 1024;
    try {
        const std::string content = readTextFile(readPath(value, what, context), mostBytes);
        return {content.begin(), content.end()};
    } catch (const ScenarioError& error) {
        throw SourceFault(value.line, error.what());
    }
}

void requireMap(const YamlValue& value, std::string_view what)
{
    if (!value.isMap()) {
        refuse(value, what, "a map of keys and values");
    }
}

void requireList(const YamlValue& value, std::string_view what)
{
    if (!value.isList()) {
        refuse(value, what, "a list");
    }
}

std::size_t readChoice(const YamlValue& value, std::string_view what, std::span<const std::string_view> words)
{
    if (!value.isScalar()) {
        std::string wanted = words.size() > 1 ? "one of " : "";
        for (const std::string_view word : words) {
            wanted += wanted.empty() || wanted.back() == ' ' ? "" : ", ";
            wanted += word;
        }
        refuse(value, what, wanted);
    }
    const auto found = std::ranges::find(words, std::string_view{value.text});
    if (found == words.end()) {
        throw SourceFault(value.line, unknownWord(what, value.text, words));
    }
    return static_cast<std::size_t>(found - words.begin());
}

std::size_t KeyChecker::placeOf(const YamlValue& key)
{
    const auto found = std::ranges::find(keys_, std::string_view{key.text});
    if (found == keys_.end()) {
        throw SourceFault(key.line, unknownWord("key", key.text, keys_) + " (in " + std::string{what_} + ")");
    }
    const auto place = static_cast<std::size_t>(found - keys_.begin());
    if (lines_[place] != 0) {
        throw SourceFault(key.line, inQuotes(key.text) + " is repeated; it was first given in line " +
                                        std::to_string(lines_[place]));
    }
    lines_[place] = key.line;
    return place;
}

void refuseDuplicates(const YamlValue& map, std::string_view what)
{
    requireMap(map, what);
    std::set<std::string_view> seen;
    for (const YamlValue& key : map.keys) {
        if (!seen.insert(key.text).second) {
            throw SourceFault(key.line, inQuotes(key.text) + " is repeated in " + std::string{what});
        }
    }
}

} // namespace sentrel::simulation
