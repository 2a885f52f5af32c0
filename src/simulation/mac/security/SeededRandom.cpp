#include "simulation/mac/security/SeededRandom.hpp"

namespace sentrel::simulation {

bool SeededRandom::fill(std::span<std::uint8_t> bytes)
{
    faults_.call("fill");
    if (faults_.strikes("fill")) {
        return false;
    }
    for (std::uint8_t& byte : bytes) {
        byte = nextByte();
    }
    return true;
}

std::uint8_t SeededRandom::nextByte()
{
    const std::lock_guard guard{mutex_};
    return static_cast<std::uint8_t>(generator_() >> 56);
}

} // namespace sentrel::simulation
