#pragma once

#include "foundation/Date.hpp"

namespace sentrel::ports {

/// The system's date and time; may jump. Any thread.
class WallClock {
public:
    virtual ~WallClock() = default;
    [[nodiscard]] virtual Date now() = 0;
};

} // namespace sentrel::ports
