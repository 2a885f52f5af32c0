#pragma once

#include "ports/Journal.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
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

    // Take over the field's value if it has that type; a whole number is also a `double`.
    void read(std::string_view field, bool& value) const;
    void read(std::string_view field, std::int64_t& value) const;
    void read(std::string_view field, double& value) const;
    void read(std::string_view field, std::string_view& value) const { value = text(field); }
    template <class Value> void read(std::string_view field, std::optional<Value>& value) const
    {
        const auto* const found = find(field);
        if (found != nullptr && !std::holds_alternative<std::monostate>(*found)) {
            read(field, value.emplace());
        }
    }
};

/// The event as one of its kind (see `core/Events.hpp` and `simulation/Events.hpp`), with the defaults for missing
/// fields; none for an event of another kind. Its texts are views into `event`.
template <ports::JournalEvent Kind> [[nodiscard]] std::optional<Kind> as(const Event& event)
{
    if (event.name != Kind::names.event) {
        return std::nullopt;
    }
    std::optional<Kind> kind{std::in_place};
    const auto read = [&]<std::size_t... I>(std::index_sequence<I...>) {
        [[maybe_unused]] const auto members = ports::membersOf(*kind);
        (event.read(Kind::names.fields[I], std::get<I>(members)), ...);
    };
    read(std::make_index_sequence<Kind::names.fields.size()>{});
    return kind;
}

/// The event as one JSON object without a line break: `at`, `event`, then the fields in order. Numbers have the
/// shortest form that reads back the same; NaN and infinities become null; invalid UTF-8 is replaced.
[[nodiscard]] std::string jsonLine(const Event& event);

} // namespace sentrel::simulation
