#pragma once

#include "ports/PowerSources.hpp"

namespace sentrel::mac {

/// The power sources through IOKit.
class MacPowerSources final : public ports::PowerSources {
public:
    [[nodiscard]] std::unique_ptr<ports::PowerSourcesSnapshot> copySnapshot() override;
    [[nodiscard]] ports::RegistrationPtr observeChanges(std::function<void()> changed) override;
};

} // namespace sentrel::mac
