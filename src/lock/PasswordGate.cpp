#include "lock/PasswordGate.hpp"

#include "core/LocalizedText.hpp"
#include "ports/Alerts.hpp"
#include "ports/ApplicationActivation.hpp"
#include "ports/LoginAuthentication.hpp"
#include "ports/SystemConstants.hpp"
#include "ports/WindowConstants.hpp"
#include "runtime/Semaphore.hpp"

#include <memory>
#include <utility>

namespace sentrel {

namespace {

using ports::deviceOwnerAuthentication;
using ports::warningAlertStyle;

/// The answer of the system's panel, given on any thread. Shared with the panel, which may outlive the request.
struct Reply {
    bool succeeded = false;
    Semaphore arrived;
};

} // namespace

PasswordGate::PasswordGate(ports::LoginAuthentication& login, ports::Alerts& alerts,
                           ports::ApplicationActivation& activation, ports::Language& language)
    : login_(login), alerts_(alerts), activation_(activation), language_(language)
{
}

Async<bool> PasswordGate::authenticate(std::string reason)
{
    try {
        const bool authenticated = co_await ask(std::move(reason));
        co_return authenticated;
    } catch (...) {
        // Cancelled, or a call raised: the next request asks anew.
        co_return false;
    }
}

Async<bool> PasswordGate::ask(std::string reason)
{
    // A new context for each request: a context that has authenticated before would not ask again.
    const auto context = login_.makeContext();
    context->setLocalizedReason(reason);
    auto evaluability = context->canEvaluatePolicy(deviceOwnerAuthentication);
    if (!evaluability.canEvaluate) {
        co_await showUnavailable(std::move(evaluability.errorDescription));
        co_return false;
    }

    const auto reply = std::make_shared<Reply>();
    context->evaluatePolicy(deviceOwnerAuthentication, reason, [reply](bool succeeded) {
        reply->succeeded = succeeded;
        reply->arrived.signal();
    });
    co_await reply->arrived.wait();
    co_return reply->succeeded;
}

Async<void> PasswordGate::showUnavailable(std::optional<std::string> why)
{
    ports::AlertContent content;
    content.style = warningAlertStyle;
    content.messageText = localizedInAnyCase(language_, "Authentication Unavailable");
    content.informativeText =
        why ? std::move(*why)
            : localizedInAnyCase(language_,
                                 "This action requires your Mac login, but authentication is not available right now.");
    // A menu-bar application: without activation the alert would open behind other applications' windows.
    activation_.activate(true);
    co_await alerts_.runModal(std::move(content));
}

} // namespace sentrel
