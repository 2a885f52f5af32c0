#pragma once

#include <cstdint>

namespace sentrel::ports {

/// This application among the others. Main thread.
class ApplicationActivation {
public:
    virtual ~ApplicationActivation() = default;

    /// `activateIgnoringOtherApps:`.
    virtual void activate(bool ignoringOtherApplications) = 0;

    /// `setPresentationOptions:` with `NSApplicationPresentationOptions`: what the person cannot do while the
    /// application is active. Those that disable something, and that which hides the menu bar, need the Dock hidden.
    virtual void setPresentationOptions(std::uint64_t options) = 0;
};

} // namespace sentrel::ports
