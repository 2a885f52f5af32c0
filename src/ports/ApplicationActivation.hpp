#pragma once

#include <cstdint>

namespace sentrel::ports {

/// This application among the others. Main thread.
class ApplicationActivation {
public:
    virtual ~ApplicationActivation() = default;

    /// `activateIgnoringOtherApps:`.
    virtual void activate(bool ignoringOtherApplications) = 0;

    /// `setPresentationOptions:` with `NSApplicationPresentationOptions`: restrictions while the application is active.
    /// The options that disable something or hide the menu bar require that the Dock is hidden. False when the system
    /// refuses the combination, which then has no effect.
    virtual bool setPresentationOptions(std::uint64_t options) = 0;
};

} // namespace sentrel::ports
