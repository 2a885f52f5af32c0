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

/// What the user may do only after the Mac login, as long as the settings want that. Shared by all views, so that an
/// action whose question is still open is not asked for again, wherever it is asked for. Main actor.
class ProtectedActions {
public:
    ProtectedActions(MainActor actor, SettingsStore& settings, PasswordGate& gate, ports::Language& language);
    ProtectedActions(const ProtectedActions&) = delete;

    /// `requirePasswordForActions`.
    [[nodiscard]] bool isLoginRequired() const;

    /// Does it at once, or after the login when that is required; not at all when the login fails. The action is known
    /// by its name: while its question is open, another one of that name is dropped.
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
