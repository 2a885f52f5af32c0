#pragma once

#include "runtime/Async.hpp"

#include <optional>
#include <string>

namespace sentrel::platform {
class Alerts;
class ApplicationActivation;
class Language;
class LoginAuthentication;
} // namespace sentrel::platform

namespace sentrel {

/// Asks the user for the Mac login. Whether an action needs it is the caller's decision; the gate always asks. It has
/// no state. Main actor.
class PasswordGate {
public:
    PasswordGate(platform::LoginAuthentication& login, platform::Alerts& alerts,
                 platform::ApplicationActivation& activation, platform::Language& language);

    /// True only if the user authenticated. The reason, a localised text, is shown in the system's panel. Failure and
    /// cancellation (also of the calling task) answer false; so does a Mac that can't ask, after an alert that says
    /// why.
    [[nodiscard]] Async<bool> authenticate(std::string reason);

private:
    Async<bool> ask(std::string reason);
    Async<void> showUnavailable(std::optional<std::string> why);

    platform::LoginAuthentication& login_;
    platform::Alerts& alerts_;
    platform::ApplicationActivation& activation_;
    platform::Language& language_;
};

} // namespace sentrel
