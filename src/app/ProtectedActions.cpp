#include "app/ProtectedActions.hpp"

#include "core/LocalizedText.hpp"
#include "core/SettingsStore.hpp"
#include "lock/PasswordGate.hpp"

#include <utility>

namespace sentrel {

std::string loginReason(ports::Language& language)
{
    return localizedInAnyCase(language, "verify your Mac login");
}

ProtectedActions::ProtectedActions(MainActor actor, SettingsStore& settings, PasswordGate& gate,
                                   ports::Language& language)
    : actor_(actor), settings_(settings), gate_(gate), language_(language)
{
}

bool ProtectedActions::isLoginRequired() const
{
    return settings_.settings().requirePasswordForActions;
}

void ProtectedActions::perform(const std::string& name, std::function<void()> action)
{
    if (!isLoginRequired()) {
        action();
        return;
    }
    if (asking_.insert(name).second) {
        tasks_.add(actor_.spawn(performAfterLogin(name, std::move(action))));
    }
}

Async<void> ProtectedActions::performAfterLogin(std::string name, std::function<void()> action)
{
    const bool hasPassed = co_await gate_.authenticate(loginReason(language_));
    asking_.erase(name);
    if (hasPassed) {
        action();
    }
}

} // namespace sentrel
