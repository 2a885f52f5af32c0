#pragma once

#include "foundation/Json.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

// Members of a request's body.

namespace sentrel::simulation {

/// Thrown for an invalid request.
struct BadRequest {
    std::string why;
};

// Each throws `BadRequest` for a member that is missing or of another kind.
[[nodiscard]] const Json& requiredMember(const Json& body, const char* key);
[[nodiscard]] std::string requiredText(const Json& body, const char* key);
[[nodiscard]] double requiredNumber(const Json& body, const char* key);
[[nodiscard]] bool requiredFlag(const Json& body, const char* key);

/// The row of a table whose `word` the body's member is; `BadRequest`, which names the words, if none is.
template <class Row, std::size_t count>
[[nodiscard]] const Row& requiredRow(const Json& body, const char* key, const std::array<Row, count>& rows)
{
    const std::string word = requiredText(body, key);
    const auto row = std::ranges::find(rows, word, &Row::word);
    if (row != rows.end()) {
        return *row;
    }
    std::string known;
    for (const Row& each : rows) {
        known += (known.empty() ? "" : ", ") + std::string{each.word};
    }
    throw BadRequest{std::string{"'"} + key + "' must be one of: " + known};
}

} // namespace sentrel::simulation
