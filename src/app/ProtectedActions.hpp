#pragma once

#include "runtime/MainActor.hpp"

#include <functional>
#include <set>
#include <string>

namespace sentrel {

class PasswordGate;
class SettingsStore;

namespace ports {
class Language;
}

/// The reason that the system's login panel shows, after "Sentrel is trying to".
[[nodiscard]] std::string loginReason(ports::Language& language);

/// Performs actions that need the Mac login if the settings require it. Shared by all views, so that an action whose
/// login is still pending is not asked for again, whichever view asks. Main actor.
class ProtectedActions {
public:
    ProtectedActions(MainActor actor, SettingsStore& settings, PasswordGate& gate, ports::Language& language);
    ProtectedActions(const ProtectedActions&) = delete;

    /// `requirePasswordForActions`.
    [[nodiscard]] bool isLoginRequired() const;

    /// Performs the action at once, or after the login when that is required; not at all when the login fails. While
    /// the login for a name is pending, further actions of that name are dropped.
    void perform(const std::string& name, std::function<void()> action);

private:
    Async<void> performAfterLogin(std::string name, std::function<void()> action);

    MainActor actor_;
    SettingsStore& settings_;
    PasswordGate& gate_;
    ports::Language& language_;
    std::set<std::string> asking_;
    TaskBag tasks_;
};

} // namespace sentrel
