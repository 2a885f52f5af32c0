#pragma once

namespace sentrel::platform {

/// This application among the others. Main thread.
class ApplicationActivation {
public:
    virtual ~ApplicationActivation() = default;

    /// `activateIgnoringOtherApps:`.
    virtual void activate(bool ignoringOtherApplications) = 0;
};

} // namespace sentrel::platform
