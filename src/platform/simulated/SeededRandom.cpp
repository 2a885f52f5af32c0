#include "platform/simulated/SeededRandom.hpp"

namespace sentrel::simulated {

bool SeededRandom::fill(std::span<std::uint8_t> bytes)
{
    if (faults_.strikes("fill")) {
        return false;
    }
    const std::lock_guard guard{mutex_};
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(generator_() >> 56);
    }
    return true;
}

} // namespace sentrel::simulated
