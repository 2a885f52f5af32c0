#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel {

/// A range of a JSON text, in bytes.
struct JsonSpan {
    std::size_t begin = 0;
    std::size_t length = 0;
};

/// The result of a scan of a JSON text before it is parsed. The text may be any bytes.
struct JsonScan {
    std::size_t deepestLevel = 0;
    std::vector<JsonSpan> oversizedNumbers; ///< numbers beyond the range of a double, in order
};

[[nodiscard]] JsonScan scanJson(std::string_view text);

} // namespace sentrel
