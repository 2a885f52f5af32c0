#pragma once

#include "foundation/Bytes.hpp"
#include "runtime/Time.hpp"
#include "simulation/stage/NearestWord.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/YamlValue.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

// Reading YAML values strictly: each function returns the value, or throws a `SourceFault` that says what it must be.

/// Context of a value.
struct ReadContext {
    std::filesystem::path folder; ///< the scenario's; base of relative paths
};

/// `true` or `false`; other Booleans of YAML 1.1 are refused.
[[nodiscard]] bool readFlag(const YamlValue& value, std::string_view what);

/// A finite number.
[[nodiscard]] double readNumber(const YamlValue& value, std::string_view what);

/// A number from `least` to `most`.
[[nodiscard]] double readNumber(const YamlValue& value, std::string_view what, double least, double most);

/// A whole number from `least` to `most`.
[[nodiscard]] std::uint32_t readWhole(const YamlValue& value, std::string_view what, std::uint32_t least,
                                      std::uint32_t most);

/// Whether the value is null or the word `none`.
[[nodiscard]] bool isNone(const YamlValue& value);

/// Text, not empty; numbers and Booleans count as text.
[[nodiscard]] std::string readText(const YamlValue& value, std::string_view what);

/// Text, or none for `none` and null.
[[nodiscard]] std::optional<std::string> readOptionalText(const YamlValue& value, std::string_view what);

/// The number of an audio device: 2 and up, since 1 is the system object.
[[nodiscard]] std::uint32_t readDevice(const YamlValue& value);

/// The number of an audio device, or none for `none` and null.
[[nodiscard]] std::optional<std::uint32_t> readOptionalDevice(const YamlValue& value);

/// A time such as `3s`, `500ms`, `2m`, `1.5s` or `1h`; with a `+` it counts from the step before.
struct StepTime {
    Duration span{};
    bool isRelative = false;
};
[[nodiscard]] StepTime readStepTime(const YamlValue& value);

/// A span such as `6s` or `500ms`.
[[nodiscard]] Duration readSpan(const YamlValue& value, std::string_view what);

/// Longest time in a scenario: far beyond any use, and far below the clock's overflow.
inline constexpr Duration longestScenario = std::chrono::hours{24 * 366};

/// An existing file or folder named by a path that is relative to the scenario.
[[nodiscard]] std::filesystem::path readPath(const YamlValue& value, std::string_view what, const ReadContext& context);

/// The whole content of such a file.
[[nodiscard]] Bytes readFileContent(const YamlValue& value, std::string_view what, const ReadContext& context);

/// Throws a `SourceFault` if the value isn't of this kind, or is empty where that makes no sense.
void requireMap(const YamlValue& value, std::string_view what);
void requireList(const YamlValue& value, std::string_view what);

/// The index in `words` of the scalar's text.
[[nodiscard]] std::size_t readChoice(const YamlValue& value, std::string_view what,
                                     std::span<const std::string_view> words);

/// Finds a map's keys in `keys`. Throws a `SourceFault` for unknown and repeated keys.
class KeyChecker {
public:
    KeyChecker(std::span<const std::string_view> keys, std::string_view what)
        : keys_(keys), what_(what), lines_(keys.size())
    {
    }

    [[nodiscard]] std::size_t placeOf(const YamlValue& key);
    [[nodiscard]] bool hasSeen(std::size_t place) const { return lines_[place] != 0; }

private:
    std::span<const std::string_view> keys_;
    std::string_view what_;
    std::vector<int> lines_; // line of each key; 0 until seen
};

/// For maps with free keys, such as device numbers: throws a `SourceFault` for a repeated key.
void refuseDuplicates(const YamlValue& map, std::string_view what);

} // namespace sentrel::simulation
