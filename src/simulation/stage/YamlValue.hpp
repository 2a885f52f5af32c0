#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// A value of a YAML document and its line.
struct YamlValue {
    enum class Kind { null, plain, quoted, list, map };

    Kind kind = Kind::null;
    int line = 1;                 ///< counted from 1
    std::string text;             ///< of a plain or quoted scalar
    std::vector<YamlValue> keys;  ///< of a map, in the order of the file: scalars all, duplicates included
    std::vector<YamlValue> items; ///< of a list; of a map the values, in the order of `keys`

    [[nodiscard]] bool isScalar() const { return kind == Kind::plain || kind == Kind::quoted; }
    [[nodiscard]] bool isMap() const { return kind == Kind::map; }
    [[nodiscard]] bool isList() const { return kind == Kind::list; }
    [[nodiscard]] bool isNull() const { return kind == Kind::null; }
};

/// Most nested levels of lists and maps in a document.
inline constexpr std::size_t mostYamlLevels = 32;

/// Reads one document. The text may be any bytes; throws `SourceFault` if it isn't UTF-8 or YAML, and for aliases,
/// tags, deep nesting, overlong lines, and keys that aren't scalars.
[[nodiscard]] YamlValue parseYaml(const std::string& text);

} // namespace sentrel::simulation
