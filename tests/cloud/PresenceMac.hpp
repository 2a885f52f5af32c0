#pragma once

#include "cloud/CloudMac.hpp"
#include "cloud/MacPresenceService.hpp"
#include "core/SettingsStore.hpp"
#include "ports/RemoteNotifications.hpp"
#include "simulation/icloud/CompanionPhone.hpp"

#include <stdexcept>
#include <string>
#include <vector>

namespace sentrel::test {

/// As much of a Mac as the phone sees: its alarm can only be armed and disarmed.
class PresenceMac : public CloudMac {
public:
    explicit PresenceMac(CloudWorld& itsWorld, const std::string& name = "MacBook", bool itIsCompatible = true,
                         std::uint64_t seed = 1)
        : CloudMac(itsWorld, name, seed), isCompatible(itIsCompatible)
    {
    }

    void registerForPushes()
    {
        icloud.notifications.setReceiver(
            {[this] { presence.setPushTokenRegistered(true); },
             [this](const std::string& /*why*/) { presence.setPushTokenRegistered(false); },
             [this](const Json& push) {
                 ++pushes;
                 if (const auto told = icloud.notifications.cloudNotification(push)) {
                     presence.receive(*told);
                 }
             }});
        icloud.notifications.registerForRemoteNotifications();
    }

    void command(std::int64_t sequence, bool arm, double secondsAgo = 0.0)
    {
        phone.send(presence.deviceID(), {arm, sequence, secondsAgo});
    }

    /// Whether the phone takes this Mac for armed; none when it doesn't know the Mac.
    [[nodiscard]] std::optional<bool> publishedArmedState()
    {
        for (const auto& mac : phone.macs()) {
            if (mac.deviceID == presence.deviceID()) {
                return mac.isArmed;
            }
        }
        return std::nullopt;
    }

    /// The command's outcomes in the journal: "7 arm" or "7 stale", in order.
    [[nodiscard]] std::vector<std::string> outcomes() const
    {
        std::vector<std::string> told;
        for (const auto& event : world.log.events()) {
            if (event.name == "command.applied" || event.name == "command.ignored") {
                told.push_back(std::to_string(std::get<std::int64_t>(*event.find("sequence"))) + " " +
                               std::string{event.text("why")});
            }
        }
        return told;
    }

    [[nodiscard]] std::uint64_t polls() const { return icloud.link.requests(CloudOperation::fetch); }
    [[nodiscard]] std::uint64_t publications() const { return icloud.link.requests(CloudOperation::modify); }

    simulation::CompanionPhone phone{world.server, world.serverClock, "owner"};
    const bool isCompatible;
    SettingsStore settings{MainActor{process}, defaults};
    bool isArmed = false;
    int pushes = 0;
    bool failsToCatchUp = false;
    int caughtUp = 0; ///< how often the local-save notice was looked at
    MacPresenceService presence{MainActor{process}, isCompatible, *cloud,
                                settings,           alarm(),      {defaults, host, wallClock, random, world.log}};

private:
    MacPresenceService::Alarm alarm()
    {
        return {[this] { return isArmed; }, [this](const AlarmSettings& changed) { sync(changed); },
                [this] {
                    ++caughtUp;
                    if (failsToCatchUp) {
                        throw std::runtime_error{"a stray exception"};
                    }
                }};
    }

    /// As the alarm does it: it arms on a MacBook only, and has its state published there.
    void sync(const AlarmSettings& changed)
    {
        isArmed = isCompatible && changed.isArmed;
        if (isCompatible) {
            MainActor{process}.spawn(presence.publishState());
        }
    }
};

} // namespace sentrel::test
