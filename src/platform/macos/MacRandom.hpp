#pragma once

#include "platform/Random.hpp"

namespace sentrel::macos {

/// The default random source of the Security framework, and the system's general generator.
class MacRandom final : public platform::Random, public platform::GeneralRandom {
public:
    [[nodiscard]] bool fill(std::span<std::uint8_t> bytes) override;
    [[nodiscard]] std::uint8_t nextByte() override;
};

} // namespace sentrel::macos
