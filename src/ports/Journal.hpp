#pragma once

#include "foundation/Quietly.hpp"

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <variant>

namespace sentrel::ports {

/// The system's log of the product's actions, for support and for the simulated MacBook's story. Must not receive
/// secrets. Any thread.
class Journal {
public:
    virtual ~Journal() = default;

    using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string_view>;
    using Field = std::pair<std::string_view, Value>;

    /// Notes an event, for example `alert.saved`, with its fields in order. The views are used during the call only. An
    /// event that can't be written is lost; callers see no failure.
    void note(std::string_view event, std::initializer_list<Field> fields) noexcept
    {
        quietly([&] { write(event, fields); });
    }

private:
    virtual void write(std::string_view event, std::initializer_list<Field> fields) = 0;
};

} // namespace sentrel::ports
