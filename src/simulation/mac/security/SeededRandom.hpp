#pragma once

#include "ports/Random.hpp"
#include "simulation/FaultSwitches.hpp"

#include <mutex>
#include <random>

namespace sentrel::simulation {

/// Random bytes that depend only on the seed, not on the sizes of the requests. Any thread.
class SeededRandom final : public ports::Random, public ports::GeneralRandom {
public:
    explicit SeededRandom(std::uint64_t seed) : generator_(seed) {}

    [[nodiscard]] bool fill(std::span<std::uint8_t> bytes) override;
    [[nodiscard]] std::uint8_t nextByte() override;

    /// `fill`: the system has no random bytes.
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{"fill"};
    std::mutex mutex_;
    std::mt19937_64 generator_;
};

} // namespace sentrel::simulation
