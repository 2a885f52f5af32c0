#pragma once

#include "ports/PowerAssertions.hpp"

namespace sentrel::mac {

/// Power-management assertions through IOKit.
class MacPowerAssertions final : public ports::PowerAssertions {
public:
    [[nodiscard]] Created create(const std::string& type, std::uint32_t level, const std::string& name) override;
    std::int32_t release(std::uint32_t id) override;
};

} // namespace sentrel::mac
