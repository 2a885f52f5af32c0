#include "simulation/stage/ValueType.hpp"

namespace sentrel::simulation::type {

ValueType<bool> flag()
{
    return {[](auto& value, auto what, auto&) { return readFlag(value, what); }, {{"type", "boolean"}}};
}

ValueType<double> number()
{
    return {[](auto& value, auto what, auto&) { return readNumber(value, what); }, {{"type", "number"}}};
}

ValueType<double> number(double least, double most)
{
    return {[least, most](auto& value, auto what, auto&) { return readNumber(value, what, least, most); },
            {{"type", "number"}, {"minimum", least}, {"maximum", most}}};
}

ValueType<std::uint32_t> whole(std::uint32_t least, std::uint32_t most)
{
    return {[least, most](auto& value, auto what, auto&) { return readWhole(value, what, least, most); },
            {{"type", "integer"}, {"minimum", least}, {"maximum", most}}};
}

ValueType<std::string> text()
{
    // A number or a Boolean is also a text.
    return {[](auto& value, auto what, auto&) { return readText(value, what); },
            {{"type", {"string", "number", "boolean"}}}};
}

ValueType<std::string> anyText()
{
    return {[](auto& value, auto what, auto&) {
                const bool isEmpty = value.kind == YamlValue::Kind::quoted && value.text.empty();
                return isEmpty ? std::string{} : readText(value, what);
            },
            text().schema};
}

ValueType<Duration> span()
{
    return {[](auto& value, auto what, auto&) { return readSpan(value, what); },
            {{"type", "string"}, {"pattern", "^[0-9.]+(ms|s|m|h)$"}}};
}

ValueType<std::uint32_t> audioDevice()
{
    return {[](auto& value, auto, auto&) { return readDevice(value); }, {{"type", "integer"}, {"minimum", 2}}};
}

ValueType<std::string> oneOf(std::string noun, std::vector<std::string_view> words)
{
    Json schema{{"enum", words}};
    return {[noun = std::move(noun), words = std::move(words)](auto& value, auto, auto&) {
                return std::string{words[readChoice(value, noun, words)]};
            },
            std::move(schema)};
}

} // namespace sentrel::simulation::type
