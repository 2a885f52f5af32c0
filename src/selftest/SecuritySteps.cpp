#include "ports/Keychain.hpp"
#include "ports/LoginAuthentication.hpp"
#include "ports/LoginItem.hpp"
#include "ports/SystemConstants.hpp"
#include "runtime/Semaphore.hpp"
#include "selftest/Steps.hpp"

#include <algorithm>
#include <atomic>
#include <memory>

namespace sentrel::selftest {

namespace {

using namespace std::string_view_literals;
using ports::KeychainConstant;
using ports::KeychainDictionary;
using ports::KeychainKey;

KeychainDictionary query()
{
    return {{KeychainKey::itemClass, KeychainConstant::genericPassword},
            {KeychainKey::service, "pelmadev.Sentrel.selftest"sv},
            {KeychainKey::account, "selftest"sv},
            {KeychainKey::useDataProtectionKeychain, true}};
}

std::string withStatus(const char* what, std::int32_t status)
{
    return std::string{what} + " with status " + std::to_string(status);
}

/// The login's answer, shared with its callback.
struct Login {
    Semaphore answered;
    std::atomic<bool> hasSucceeded = false;
};

} // namespace

Async<Outcome> checkKeychain(const Bench& bench)
{
    ports::Keychain& keychain = bench.platform.keychain;
    const Bytes written{1, 2, 3, 0, 255};
    keychain.remove(query()); // left by a run that was interrupted
    KeychainDictionary item = query();
    item.emplace(KeychainKey::accessible, KeychainConstant::accessibleWhenUnlocked);
    item.emplace(KeychainKey::valueData, BytesView{written});
    const std::int32_t added = keychain.add(item);
    if (added != ports::securitySuccess) {
        co_return Outcome{Verdict::fail, withStatus("an item is refused", added)};
    }
    KeychainDictionary wanted = query();
    wanted.emplace(KeychainKey::returnData, true);
    wanted.emplace(KeychainKey::matchLimit, KeychainConstant::matchLimitOne);
    const auto copied = keychain.copyMatching(wanted);
    const std::int32_t removed = keychain.remove(query());
    if (!copied.data || !std::ranges::equal(copied.data->view(), written)) {
        co_return Outcome{Verdict::fail, withStatus("the item isn't found again,", copied.status)};
    }
    if (removed != ports::securitySuccess) {
        co_return Outcome{Verdict::fail, withStatus("the item can't be removed,", removed)};
    }
    co_return Outcome{Verdict::pass, "an item there and back"};
}

Async<Outcome> checkLogin(const Bench& bench)
{
    const auto context = bench.platform.loginAuthentication.makeContext();
    const auto ability = context->canEvaluatePolicy(ports::deviceOwnerAuthentication);
    if (!ability.canEvaluate) {
        co_return Outcome{Verdict::fail, ability.errorDescription.value_or("the login is not available")};
    }
    const auto login = std::make_shared<Login>();
    context->evaluatePolicy(ports::deviceOwnerAuthentication, "try the login panel", [login](bool hasSucceeded) {
        login->hasSucceeded = hasSucceeded;
        login->answered.signal();
    });
    co_await login->answered.wait();
    co_return login->hasSucceeded ? Outcome{Verdict::pass, "answered"} : Outcome{Verdict::ask, "the login was refused"};
}

Async<Outcome> checkLoginItem(const Bench& bench)
{
    constexpr const char* names[] = {"not registered", "enabled", "waits for approval", "not found"};
    const std::int64_t status = bench.platform.loginItem.status();
    const bool isKnown = status >= 0 && status < std::ssize(names);
    co_return isKnown ? Outcome{Verdict::pass, names[status]}
                      : Outcome{Verdict::fail, "unknown status " + std::to_string(status)};
}

} // namespace sentrel::selftest
