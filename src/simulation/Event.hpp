#pragma once

#include "ports/Journal.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace sentrel::simulation {

/// One thing that happened on the simulated MacBook: a journal's event that owns its texts.
struct Event {
    using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

    double at = 0.0; ///< seconds since the log's start
    std::string name;
    std::vector<std::pair<std::string, Value>> fields; ///< in the order in which they were noted

    /// The value of a field; null when the event has no such field.
    [[nodiscard]] const Value* find(std::string_view field) const;

    /// The text of a field; empty if it is missing or not text.
    [[nodiscard]] std::string_view text(std::string_view field) const;
};

/// The event as one JSON object without a line break: `at`, `event`, then the fields in order. Numbers have the
/// shortest form that reads back the same; NaN and infinities become null; invalid UTF-8 is replaced.
[[nodiscard]] std::string jsonLine(const Event& event);

} // namespace sentrel::simulation
