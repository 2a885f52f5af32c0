#pragma once

#include "ports/AudioEngine.hpp"

namespace sentrel::mac {

/// The system's beep through AppKit.
class MacSystemBeep final : public ports::SystemBeep {
public:
    void beep() override;
};

} // namespace sentrel::mac
