#pragma once

#include <cstdint>
#include <span>

namespace sentrel::platform {

/// The system's source of random bytes. Any thread.
class Random {
public:
    virtual ~Random() = default;

    /// Fills the whole span; false when the system has none to give (`SecRandomCopyBytes`).
    [[nodiscard]] virtual bool fill(std::span<std::uint8_t> bytes) = 0;
};

} // namespace sentrel::platform
