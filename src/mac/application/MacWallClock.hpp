#pragma once

#include "ports/WallClock.hpp"

namespace sentrel::mac {

/// The system's date and time.
class MacWallClock final : public ports::WallClock {
public:
    [[nodiscard]] Date now() override;
};

} // namespace sentrel::mac
