#include "simulation/stage/ExpectedState.hpp"

#include "core/TriggerReason.hpp"
#include "ports/WindowConstants.hpp"
#include "simulation/Word.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"

#include <nlohmann/json.hpp>

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::array<Word<AlertStorageLocation>, 3> storageWords{{
    {"cloud", AlertStorageLocation::cloud},
    {"localMac", AlertStorageLocation::localMac},
    {"pendingUpload", AlertStorageLocation::pendingUpload},
}};

Json textOrNull(const std::optional<std::string>& text)
{
    return text ? Json(*text) : Json{};
}

} // namespace

Json lastAlertOf(const MacState& state)
{
    if (state.alerts().empty()) {
        return nullptr;
    }
    const StoredAlert& last = state.alerts().back();
    return {{"reason", rawValue(last.alert.reason)},
            {"deviceName", last.alert.deviceName},
            {"photo", state.photoOf(last).has_value()},
            {"pendingUpload", last.pendingUpload}};
}

Json alertReasonsOf(const MacState& state)
{
    Json reasons = Json::array();
    for (const StoredAlert& stored : state.alerts()) {
        reasons.push_back(rawValue(stored.alert.reason));
    }
    return reasons;
}

Json devicesOf(const MacState& state)
{
    Json devices = Json::object();
    for (const AudioDevice& device : state.audioDevices()) {
        const auto volume = device.volume();
        devices[std::to_string(device.id)] = {{"volume", volume ? jsonNumber(*volume) : Json{}},
                                              {"muted", device.isMuted()}};
    }
    return devices;
}

Json phoneOf(const MacState& state)
{
    const auto phone = state.phone();
    if (!phone) {
        return nullptr;
    }
    Json macs = Json::array();
    for (const auto& mac : phone->macs) {
        macs.push_back({{"deviceName", mac.deviceName}, {"isArmed", mac.isArmed}});
    }
    return {
        {"alerts", phone->alerts.size()}, {"notifications", phone->notifications.size()}, {"macs", std::move(macs)}};
}

Json iconOf(const MacState& state)
{
    const auto item = state.menuBarItem();
    return item ? Json(item->image) : Json{};
}

Json alertRowsOf(SentrelApp& app)
{
    Json rows = Json::array();
    for (const AlertRow& row : *app.alertsService().alerts.get()) {
        rows.push_back(
            {{"reason", rawValue(row.alert.reason)}, {"storage", wordFor(storageWords, row.storageLocation)}});
    }
    return rows;
}

Json sectionsOf(SentrelApp& app)
{
    Json names = Json::array();
    for (const AlertSection& each : app.alertsService().sections()) {
        names.push_back(each.id);
    }
    return names;
}

Json cloudViewOf(SentrelApp& app)
{
    CloudKitService& cloud = app.cloud();
    return {{"isAvailable", cloud.isAvailable.get()},
            {"isReachable", cloud.isReachable.get()},
            {"lastSyncError", textOrNull(cloud.lastSyncError.get())}};
}

std::string_view coverWordOf(MacSession& session, const MacState& state)
{
    if (state.covers().empty()) {
        return "hidden";
    }
    return session.app() != nullptr && session.app()->cover().lockoutEnd() ? "locked-out" : "shown";
}

std::string_view quitWordOf(MacSession& session)
{
    if (session.app() == nullptr) {
        return "quit";
    }
    return session.app()->delegate().quitState() == MacAppDelegate::QuitState::running ? "running" : "asked";
}

Json activationPolicyOf(MacSession& session)
{
    const bool isRegular = session.mac().application.activationPolicy() == ports::regularActivationPolicy;
    return session.app() == nullptr ? Json{} : Json(isRegular ? "regular" : "accessory");
}

} // namespace sentrel::simulation
