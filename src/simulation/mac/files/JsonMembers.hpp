#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// A member of a JSON object; the value's text is kept byte for byte.
struct JsonMember {
    std::string key;
    std::string value; ///< JSON text
};

/// The members of an object in order. The text must be known to be a JSON object; only its outermost level is parsed,
/// so that numbers beyond any number type survive.
[[nodiscard]] std::vector<JsonMember> splitJsonObject(std::string_view text);

/// The object with these members, one a line.
[[nodiscard]] std::string joinJsonObject(const std::vector<JsonMember>& members);

} // namespace sentrel::simulation
