#pragma once

#include "foundation/Json.hpp"
#include "simulation/Word.hpp"
#include "simulation/stage/ValueReader.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// A type of values in scenarios: its reader and its schema.
template <class T> struct ValueType {
    /// Reads a value that messages call `what`. Throws `SourceFault`.
    std::function<T(const YamlValue& value, std::string_view what, const ReadContext& context)> read;
    Json schema; ///< JSON Schema of the value
};

/// A key of a map.
template <class Target> struct Field {
    std::string_view key;
    std::function<void(Target& into, const YamlValue& value, const ReadContext& context)> read;
    Json schema;
    bool isRequired = false;
};
template <class Target> using Fields = std::vector<Field<Target>>;

/// A key whose value becomes a member.
template <class Target, class Member, class T>
[[nodiscard]] Field<Target> field(std::string_view key, Member Target::* member, ValueType<T> type)
{
    return {
        key,
        [key, member, read = std::move(type.read)](Target& into, const YamlValue& value, const ReadContext& context) {
            into.*member = read(value, inQuotes(key), context);
        },
        std::move(type.schema)};
}

/// A key without which the map is refused.
template <class Target> [[nodiscard]] Field<Target> required(Field<Target> field)
{
    field.isRequired = true;
    return field;
}

/// Reads a map by its keys, in the order of the file.
template <class Target>
void readFields(const YamlValue& map, std::string_view what, const Fields<Target>& fields, Target& into,
                const ReadContext& context)
{
    requireMap(map, what);
    std::vector<std::string_view> keys;
    for (const auto& field : fields) {
        keys.push_back(field.key);
    }
    KeyChecker checker{keys, what};
    for (std::size_t i = 0; i < map.keys.size(); ++i) {
        fields[checker.placeOf(map.keys[i])].read(into, map.items[i], context);
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].isRequired && !checker.hasSeen(i)) {
            throw SourceFault(map.line, std::string{what} + " needs " + inQuotes(fields[i].key));
        }
    }
}

/// The JSON Schema of a map with these keys and no others.
template <class Target> [[nodiscard]] Json schemaOf(const Fields<Target>& fields)
{
    Json schema{{"type", "object"}, {"properties", Json::object()}, {"additionalProperties", false}};
    for (const auto& field : fields) {
        schema["properties"][std::string{field.key}] = field.schema;
        if (field.isRequired) {
            schema["required"].push_back(field.key);
        }
    }
    return schema;
}

/// The types of values in scenarios.
namespace type {

[[nodiscard]] ValueType<bool> flag();
[[nodiscard]] ValueType<double> number();
[[nodiscard]] ValueType<double> number(double least, double most);
[[nodiscard]] ValueType<std::uint32_t> whole(std::uint32_t least, std::uint32_t most);

/// Text, not empty.
[[nodiscard]] ValueType<std::string> text();

/// Text; an empty one must be in quotes.
[[nodiscard]] ValueType<std::string> anyText();

/// A span such as `6s` or `500ms`.
[[nodiscard]] ValueType<Duration> span();

/// The number of an audio device.
[[nodiscard]] ValueType<std::uint32_t> audioDevice();

/// A word from a list; messages call it a `noun`.
[[nodiscard]] ValueType<std::string> oneOf(std::string noun, std::vector<std::string_view> words);

/// The meaning of a word. The table must outlive the type.
template <class Words> [[nodiscard]] auto word(std::string noun, const Words& words)
{
    using Meaning = decltype(std::begin(words)->meaning);
    std::vector<std::string_view> texts;
    for (const auto& word : words) {
        texts.push_back(word.text);
    }
    Json schema{{"enum", texts}};
    return ValueType<std::remove_const_t<Meaning>>{
        [noun = std::move(noun), texts = std::move(texts), &words](const YamlValue& value, std::string_view,
                                                                   const ReadContext&) {
            return std::begin(words)[static_cast<std::ptrdiff_t>(readChoice(value, noun, texts))].meaning;
        },
        std::move(schema)};
}

/// None for null and the word `none`.
template <class T> [[nodiscard]] ValueType<std::optional<T>> orNone(ValueType<T> type)
{
    Json schema{{"anyOf", {{{"enum", {"none", nullptr}}}, type.schema}}};
    return {[read = std::move(type.read)](const YamlValue& value, std::string_view what,
                                          const ReadContext& context) -> std::optional<T> {
                return isNone(value) ? std::nullopt : std::optional<T>{read(value, what, context)};
            },
            std::move(schema)};
}

template <class T> [[nodiscard]] ValueType<std::vector<T>> listOf(ValueType<T> type)
{
    Json schema{{"type", "array"}, {"items", type.schema}};
    return {[read = std::move(type.read)](const YamlValue& value, std::string_view what, const ReadContext& context) {
                requireList(value, what);
                std::vector<T> items;
                for (const YamlValue& item : value.items) {
                    items.push_back(read(item, what, context));
                }
                return items;
            },
            std::move(schema)};
}

/// A map with these keys. With an `example`, an empty map is refused.
template <class Target> [[nodiscard]] ValueType<Target> map(Fields<Target> fields, std::string example = {})
{
    Json schema = schemaOf(fields);
    return {[fields = std::move(fields), example = std::move(example)](const YamlValue& value, std::string_view what,
                                                                       const ReadContext& context) {
                Target target;
                readFields(value, what, fields, target, context);
                if (value.keys.empty() && !example.empty()) {
                    throw SourceFault(value.line, std::string{what} + " needs at least one key, as in " + example);
                }
                return target;
            },
            std::move(schema)};
}

/// A map, or for short something else.
template <class T> [[nodiscard]] ValueType<T> either(ValueType<T> map, ValueType<T> other)
{
    Json schema{{"anyOf", {map.schema, other.schema}}};
    return {[ofMap = std::move(map.read), ofOther = std::move(other.read)](
                const YamlValue& value, std::string_view what, const ReadContext& context) {
                return (value.isMap() ? ofMap : ofOther)(value, what, context);
            },
            std::move(schema)};
}

/// A type that messages call otherwise than by its key.
template <class T> [[nodiscard]] ValueType<T> called(std::string what, ValueType<T> type)
{
    return {[what = std::move(what), read = std::move(type.read)](const YamlValue& value, std::string_view,
                                                                  const ReadContext& context) {
                return read(value, what, context);
            },
            std::move(type.schema)};
}

/// Each value converted by the function.
template <class T, class Make> [[nodiscard]] auto made(ValueType<T> type, Make make)
{
    using Made = std::invoke_result_t<Make, T>;
    return ValueType<Made>{[read = std::move(type.read), make](const YamlValue& value, std::string_view what,
                                                               const ReadContext& context) -> Made {
                               return make(read(value, what, context));
                           },
                           std::move(type.schema)};
}

/// The same type with a description in the schema.
template <class T> [[nodiscard]] ValueType<T> about(std::string_view description, ValueType<T> type)
{
    type.schema["description"] = description;
    return type;
}

} // namespace type

} // namespace sentrel::simulation
