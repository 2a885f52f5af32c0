#pragma once

#include "foundation/Quietly.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <variant>

namespace sentrel::ports {

/// The name of an event and the names of its fields, as they stand in the log.
template <std::size_t Count> struct EventNames {
    std::string_view event;
    std::array<std::string_view, Count> fields;

    template <class... Fields>
    constexpr explicit EventNames(std::string_view name, Fields... fieldNames) : event(name), fields{fieldNames...}
    {
    }
};
template <class... Fields> EventNames(std::string_view, Fields...) -> EventNames<sizeof...(Fields)>;

/// A kind of event: an aggregate with static `names`, and for each of their fields one member, in the same order. A
/// member is a `bool`, `std::int64_t`, `double` or `std::string_view`, or an optional one, which is null when empty.
template <class Event>
concept JournalEvent = requires { Event::names.event; };

/// References to the members of an event, in order.
template <class Event> constexpr auto membersOf(Event& event)
{
    constexpr std::size_t count = Event::names.fields.size();
    static_assert(count <= 4, "an event has at most four fields");
    if constexpr (count == 0) {
        return std::tie();
    } else if constexpr (count == 1) {
        auto& [first] = event;
        return std::tie(first);
    } else if constexpr (count == 2) {
        auto& [first, second] = event;
        return std::tie(first, second);
    } else if constexpr (count == 3) {
        auto& [first, second, third] = event;
        return std::tie(first, second, third);
    } else {
        auto& [first, second, third, fourth] = event;
        return std::tie(first, second, third, fourth);
    }
}

/// The system's log of the product's actions, for support and for the simulated MacBook's story. Must not receive
/// secrets. Any thread.
class Journal {
public:
    virtual ~Journal() = default;

    using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string_view>;
    using Field = std::pair<std::string_view, Value>;

    /// Notes an event, for example `events::AlertSaved`, with its fields in order. Its texts are used during the call
    /// only. An event that can't be written is lost; callers see no failure.
    template <JournalEvent Event> void note(const Event& event) noexcept
    {
        noteMembers(event, std::make_index_sequence<Event::names.fields.size()>{});
    }

    /// Notes an event that another journal has received.
    void passOn(std::string_view event, std::initializer_list<Field> fields) noexcept
    {
        quietly([&] { write(event, fields); });
    }

private:
    virtual void write(std::string_view event, std::initializer_list<Field> fields) = 0;

    template <class Event, std::size_t... I>
    void noteMembers(const Event& event, std::index_sequence<I...> /*places*/) noexcept
    {
        [[maybe_unused]] const auto members = membersOf(event);
        passOn(Event::names.event, {Field{Event::names.fields[I], valueOf(std::get<I>(members))}...});
    }

    template <class Member> static Value valueOf(const Member& member) { return member; }
    template <class Member> static Value valueOf(const std::optional<Member>& member)
    {
        return member ? Value{*member} : Value{};
    }
};

} // namespace sentrel::ports
