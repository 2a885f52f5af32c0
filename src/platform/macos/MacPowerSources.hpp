#pragma once

#include "platform/PowerSources.hpp"

namespace sentrel::macos {

/// The power sources through IOKit.
class MacPowerSources final : public platform::PowerSources {
public:
    [[nodiscard]] std::unique_ptr<platform::PowerSourcesSnapshot> copySnapshot() override;
    [[nodiscard]] platform::RegistrationPtr observeChanges(std::function<void()> changed) override;
};

} // namespace sentrel::macos
