#pragma once

#include <cstdint>
#include <span>

namespace sentrel::ports {

/// The system's source of random bytes. Any thread.
class Random {
public:
    virtual ~Random() = default;

    /// Fills the whole span; false when the system fails (`SecRandomCopyBytes`).
    [[nodiscard]] virtual bool fill(std::span<std::uint8_t> bytes) = 0;
};

/// The system's general random generator, which never fails. Any thread.
class GeneralRandom {
public:
    virtual ~GeneralRandom() = default;

    /// A uniformly distributed byte (`arc4random_uniform`).
    [[nodiscard]] virtual std::uint8_t nextByte() = 0;
};

} // namespace sentrel::ports
