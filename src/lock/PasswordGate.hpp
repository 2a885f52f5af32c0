#pragma once

#include "runtime/Async.hpp"

#include <optional>
#include <string>

namespace sentrel::ports {
class Alerts;
class ApplicationActivation;
class Language;
class LoginAuthentication;
} // namespace sentrel::ports

namespace sentrel {

/// Asks the user for the Mac login. Always asks: the caller decides whether an action needs it. Stateless. Main actor.
class PasswordGate {
public:
    PasswordGate(ports::LoginAuthentication& login, ports::Alerts& alerts, ports::ApplicationActivation& activation,
                 ports::Language& language);

    /// True only if the user authenticated. The reason, a localised text, is shown in the system's panel. False after a
    /// failure, also of a system call, or cancellation, also of the calling task, or, after an alert that says why, on
    /// a Mac that can't ask.
    [[nodiscard]] Async<bool> authenticate(std::string reason);

private:
    Async<bool> ask(std::string reason);
    Async<void> showUnavailable(std::optional<std::string> why);

    ports::LoginAuthentication& login_;
    ports::Alerts& alerts_;
    ports::ApplicationActivation& activation_;
    ports::Language& language_;
};

} // namespace sentrel
