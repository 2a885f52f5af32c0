#pragma once

#include "foundation/Date.hpp"

namespace sentrel::ports {

/// The date and time as the system has them; it may jump. Any thread.
class WallClock {
public:
    virtual ~WallClock() = default;
    [[nodiscard]] virtual Date now() = 0;
};

} // namespace sentrel::ports
