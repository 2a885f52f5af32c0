#pragma once

#include "platform/Random.hpp"

namespace sentrel::macos {

/// The default random source of the Security framework.
class MacRandom final : public platform::Random {
public:
    [[nodiscard]] bool fill(std::span<std::uint8_t> bytes) override;
};

} // namespace sentrel::macos
