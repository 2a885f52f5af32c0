#pragma once

#include "cloud/CloudBackoffPolicy.hpp"
#include "ports/CloudDatabase.hpp"
#include "runtime/MainActor.hpp"

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>

namespace sentrel {

namespace ports {
class WallClock;
}

/// The two push subscriptions: alerts to the user's phone, commands to this Mac. Each is saved once per run, which is
/// harmless if the server has it already, and has its own backoff after failures. Main actor only.
class CloudSubscriptions {
public:
    static constexpr const char* alertIdentifier = "alert-event-subscription-v1";
    static constexpr const char* macCommandIdentifier = "mac-device-command-subscription-v1";

    /// `messageOf` words an error for the user.
    CloudSubscriptions(MainActor actor, ports::CloudDatabase& database, ports::WallClock& wallClock,
                       std::function<std::string(const std::exception&)> messageOf);
    CloudSubscriptions(const CloudSubscriptions&) = delete;

    /// Saves each subscription not yet saved or being saved, unless its backoff forbids, within 15 s each. Throws only
    /// a `CancellationError`.
    [[nodiscard]] Async<void> ensure();

    /// Forgets saves and backoffs, for another user.
    void startOver();

    [[nodiscard]] bool macCommandSubscriptionEnsured() const { return macCommand_.isEnsured; }

    /// The message of the last failure to save the alerts' subscription; none after a success.
    [[nodiscard]] const std::optional<std::string>& pushSubscriptionError() const { return pushSubscriptionError_; }

private:
    struct State {
        bool isEnsured = false;
        CloudBackoffPolicy backoff;
        bool isBeingSaved = false;
    };

    [[nodiscard]] Async<void> ensure(State& state, ports::CloudSubscription subscription,
                                     std::optional<std::string>& message);

    MainActor actor_;
    ports::CloudDatabase& database_;
    ports::WallClock& wallClock_;
    std::function<std::string(const std::exception&)> messageOf_;
    State alert_;
    State macCommand_;
    std::optional<std::string> pushSubscriptionError_;
    std::uint64_t users_ = 0; ///< how often the user has changed
};

} // namespace sentrel
