#pragma once

#include "ports/PowerAssertions.hpp"

#include <cstdint>
#include <string>

namespace sentrel {

/// Keeps the Mac from idle-sleeping while it is held. Main actor only. The destructor deliberately doesn't release it:
/// the owner does, and the system drops the assertions of a dead process.
class PowerAssertion {
public:
    explicit PowerAssertion(ports::PowerAssertions& assertions) : assertions_(assertions) {}
    PowerAssertion(const PowerAssertion&) = delete;

    /// Takes the assertion under this name, unless it is held already. Stays inactive, without an error, if refused.
    void acquire(const std::string& reason);

    /// Releases the assertion if it is held.
    void release();

    [[nodiscard]] bool isActive() const { return isActive_; }

private:
    ports::PowerAssertions& assertions_;
    std::uint32_t assertionID_ = 0;
    bool isActive_ = false;
};

} // namespace sentrel
