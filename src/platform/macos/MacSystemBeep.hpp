#pragma once

#include "platform/AudioEngine.hpp"

namespace sentrel::macos {

/// The system's beep through AppKit.
class MacSystemBeep final : public platform::SystemBeep {
public:
    void beep() override;
};

} // namespace sentrel::macos
