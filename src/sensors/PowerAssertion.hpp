#pragma once

#include "ports/PowerAssertions.hpp"

#include <cstdint>
#include <string>

namespace sentrel {

/// Keeps the Mac from idle-sleeping while it is held. Main actor only. Its end deliberately releases nothing: whoever
/// acquired it releases it, and the system drops what a dead process held.
class PowerAssertion {
public:
    explicit PowerAssertion(ports::PowerAssertions& assertions) : assertions_(assertions) {}
    PowerAssertion(const PowerAssertion&) = delete;

    /// Takes the assertion under this name, unless it is held already. A refusal leaves it inactive, silently.
    void acquire(const std::string& reason);

    /// Gives it back if it is held.
    void release();

    [[nodiscard]] bool isActive() const { return isActive_; }

private:
    ports::PowerAssertions& assertions_;
    std::uint32_t assertionID_ = 0;
    bool isActive_ = false;
};

} // namespace sentrel
