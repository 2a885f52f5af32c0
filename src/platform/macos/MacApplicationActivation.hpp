#pragma once

#include "platform/ApplicationActivation.hpp"

namespace sentrel::macos {

/// The shared application object.
class MacApplicationActivation final : public platform::ApplicationActivation {
public:
    void activate(bool ignoringOtherApplications) override;
    void setPresentationOptions(std::uint64_t options) override;
};

} // namespace sentrel::macos
