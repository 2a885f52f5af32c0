#pragma once

#include "ports/Registration.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel::ports {

/// The power sources at one moment (`IOPSCopyPowerSourcesInfo`).
class PowerSourcesSnapshot {
public:
    virtual ~PowerSourcesSnapshot() = default;

    /// Number of sources in the list; none when there is no list (`IOPSCopyPowerSourcesList`).
    [[nodiscard]] virtual std::optional<std::size_t> count() const = 0;

    /// A text of the source's description (`IOPSGetPowerSourceDescription`); none when there is no description, no
    /// such key, or no text under it. `source` is below `count()`.
    [[nodiscard]] virtual std::optional<std::string> text(std::size_t source, std::string_view key) const = 0;
};

/// Batteries and adapters. Main thread.
class PowerSources {
public:
    virtual ~PowerSources() = default;

    /// A snapshot; null when the system gives none.
    [[nodiscard]] virtual std::unique_ptr<PowerSourcesSnapshot> copySnapshot() = 0;

    /// Calls back on the main thread whenever a power source changes (`IOPSNotificationCreateRunLoopSource`, main run
    /// loop, default mode); null when the system makes no such source.
    [[nodiscard]] virtual RegistrationPtr observeChanges(std::function<void()> changed) = 0;
};

} // namespace sentrel::ports
