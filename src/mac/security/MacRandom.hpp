#pragma once

#include "ports/Random.hpp"

namespace sentrel::mac {

/// The default random source of the Security framework, and the system's general generator.
class MacRandom final : public ports::Random, public ports::GeneralRandom {
public:
    [[nodiscard]] bool fill(std::span<std::uint8_t> bytes) override;
    [[nodiscard]] std::uint8_t nextByte() override;
};

} // namespace sentrel::mac
