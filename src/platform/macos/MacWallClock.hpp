#pragma once

#include "platform/WallClock.hpp"

namespace sentrel::macos {

/// The system's date and time.
class MacWallClock final : public platform::WallClock {
public:
    [[nodiscard]] Date now() override;
};

} // namespace sentrel::macos
