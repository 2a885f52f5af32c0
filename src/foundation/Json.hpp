#pragma once

#include "foundation/Bytes.hpp"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sentrel {

/// A JSON value whose objects keep their keys in the order in which they were written.
using Json = nlohmann::ordered_json;

/// Thrown for a value that JSON can't represent: NaN or an infinity.
class JsonEncodingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Maximum nesting of arrays and objects in a document; the limit of the system's own coder.
inline constexpr std::size_t mostJsonLevels = 512;

/// Reads a document. None when it isn't JSON, isn't UTF-8 or is nested too deeply. A number too large for a double
/// reads as null, so that it costs its own field and not the document.
[[nodiscard]] std::optional<Json> parseJson(BytesView text);

/// Writes a value without white space, numbers in the shortest form that reads back the same. Text that isn't UTF-8
/// is mended with replacement characters. Throws `JsonEncodingError`.
[[nodiscard]] std::string encodeJson(const Json& value);

/// Appends a text as `encodeJson` writes it. For lists too long to be held as values.
void appendJsonText(std::string& document, std::string_view text);

/// A member of an object; null when the value isn't an object or has no such member.
[[nodiscard]] const Json* member(const Json& object, std::string_view key);

/// A member of the given type; none when it is missing or of another type. A Boolean isn't a number, and a whole number
/// must fit its type exactly.
[[nodiscard]] std::optional<bool> boolMember(const Json& object, std::string_view key);
[[nodiscard]] std::optional<double> doubleMember(const Json& object, std::string_view key);
[[nodiscard]] std::optional<float> floatMember(const Json& object, std::string_view key);
[[nodiscard]] std::optional<std::uint32_t> uint32Member(const Json& object, std::string_view key);
[[nodiscard]] std::optional<std::string> textMember(const Json& object, std::string_view key);

/// True when the member is missing or null.
[[nodiscard]] bool isAbsent(const Json& object, std::string_view key);

/// A 32-bit float as a JSON number that keeps its own shortest form (0.3, not 0.30000001192092896).
[[nodiscard]] Json jsonNumber(float value);

} // namespace sentrel
