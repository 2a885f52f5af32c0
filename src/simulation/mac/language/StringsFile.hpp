#pragma once

#include "foundation/Bytes.hpp"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// A parsed localisation table: its good entries, and where it is damaged.
struct StringsTable {
    struct Damage {
        std::size_t line = 0; ///< counted from 1
        std::string_view problem;
    };

    std::map<std::string, std::string, std::less<>> texts;
    std::vector<Damage> damages; ///< in the order of the lines
};

/// Reads a `.strings` file in UTF-8 as the product's tables are written: entries `"key" = "text";` with the escapes of
/// C for line break, tab, return, quotation mark and backslash, and between them comments of both kinds. A damaged
/// entry loses itself and the rest of the line on which it begins, no more. The last of several entries with one key
/// counts.
[[nodiscard]] StringsTable parseStringsFile(BytesView content);

} // namespace sentrel::simulation
