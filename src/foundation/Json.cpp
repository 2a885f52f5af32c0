#include "foundation/Json.hpp"

#include "foundation/JsonScan.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace sentrel {

namespace {

template <class Number> std::string shortest(Number value)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

void append(std::string& text, const Json& value);

/// Whether the character stands for itself in a JSON text.
bool isPlain(char character)
{
    return character >= ' ' && character != '"' && character != '\\' && static_cast<unsigned char>(character) < 0x80;
}

void appendArray(std::string& text, const Json& value)
{
    text += '[';
    for (const Json& element : value) {
        if (text.back() != '[') {
            text += ',';
        }
        append(text, element);
    }
    text += ']';
}

void appendObject(std::string& text, const Json& value)
{
    text += '{';
    bool isFirst = true;
    for (const auto& [key, element] : value.get_ref<const Json::object_t&>()) {
        if (!isFirst) {
            text += ',';
        }
        isFirst = false;
        appendJsonText(text, key);
        text += ':';
        append(text, element);
    }
    text += '}';
}

void append(std::string& text, const Json& value)
{
    switch (value.type()) {
    case Json::value_t::object:
        return appendObject(text, value);
    case Json::value_t::array:
        return appendArray(text, value);
    case Json::value_t::string:
        return appendJsonText(text, value.get_ref<const std::string&>());
    case Json::value_t::number_float: {
        const auto number = value.get<double>();
        if (!std::isfinite(number)) {
            throw JsonEncodingError{"JSON has no text for a number that isn't finite"};
        }
        text += shortest(number);
        return;
    }
    case Json::value_t::boolean:
        text += value.get<bool>() ? "true" : "false";
        return;
    default:
        text += value.dump();
    }
}

std::string withNulls(std::string_view text, const std::vector<JsonSpan>& spans)
{
    std::string mended;
    std::size_t copied = 0;
    for (const JsonSpan& span : spans) {
        mended += text.substr(copied, span.begin - copied);
        mended += "null";
        copied = span.begin + span.length;
    }
    return mended += text.substr(copied);
}

std::optional<Json> parseScanned(std::string_view text)
{
    Json value = Json::parse(text, nullptr, false);
    if (value.is_discarded()) {
        return std::nullopt;
    }
    return value;
}

} // namespace

std::optional<Json> parseJson(BytesView bytes)
{
    const std::string_view text = textOf(bytes);
    const JsonScan scan = scanJson(text);
    if (scan.deepestLevel > mostJsonLevels) {
        return std::nullopt;
    }
    if (scan.oversizedNumbers.empty()) {
        return parseScanned(text);
    }
    return parseScanned(withNulls(text, scan.oversizedNumbers));
}

void appendJsonText(std::string& document, std::string_view text)
{
    if (std::ranges::all_of(text, isPlain)) {
        // Fast path for nearly every text: the library's writer would make a serializer each time.
        document += '"';
        document += text;
        document += '"';
        return;
    }
    document += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string encodeJson(const Json& value)
{
    std::string text;
    append(text, value);
    return text;
}

const Json* member(const Json& object, std::string_view key)
{
    if (!object.is_object()) {
        return nullptr;
    }
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (entry.key() == key) {
            return &entry.value();
        }
    }
    return nullptr;
}

std::optional<bool> boolMember(const Json& object, std::string_view key)
{
    const Json* const value = member(object, key);
    if (value == nullptr || !value->is_boolean()) {
        return std::nullopt;
    }
    return value->get<bool>();
}

std::optional<double> doubleMember(const Json& object, std::string_view key)
{
    const Json* const value = member(object, key);
    if (value == nullptr || !value->is_number()) {
        return std::nullopt;
    }
    return value->get<double>();
}

std::optional<float> floatMember(const Json& object, std::string_view key)
{
    const auto value = doubleMember(object, key);
    if (!value || std::abs(*value) > static_cast<double>(std::numeric_limits<float>::max())) {
        return std::nullopt;
    }
    return static_cast<float>(*value);
}

std::optional<std::uint32_t> uint32Member(const Json& object, std::string_view key)
{
    const auto value = doubleMember(object, key);
    if (!value || *value < 0.0 || *value > static_cast<double>(std::numeric_limits<std::uint32_t>::max()) ||
        *value != std::floor(*value)) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(*value);
}

std::optional<std::string> textMember(const Json& object, std::string_view key)
{
    const Json* const value = member(object, key);
    if (value == nullptr || !value->is_string()) {
        return std::nullopt;
    }
    return value->get<std::string>();
}

bool isAbsent(const Json& object, std::string_view key)
{
    const Json* const value = member(object, key);
    return value == nullptr || value->is_null();
}

Json jsonNumber(float value)
{
    if (!std::isfinite(value)) {
        return Json(static_cast<double>(value)); // `encodeJson` refuses it
    }
    // Read by the JSON parser: Apple's library has no `std::from_chars` for floating-point numbers.
    return Json(Json::parse(shortest(value)).get<double>());
}

} // namespace sentrel
