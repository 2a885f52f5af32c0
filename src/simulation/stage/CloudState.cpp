#include "simulation/stage/CloudState.hpp"

#include "cloud/AlertRecord.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/StoredDefaults.hpp"

#include <nlohmann/json.hpp>

#include <string_view>

namespace sentrel::simulation {

namespace {

Json jsonOf(const std::optional<std::string>& text)
{
    return text ? Json(*text) : Json(nullptr);
}

std::string_view nameOf(AlertStorageLocation location)
{
    switch (location) {
    case AlertStorageLocation::cloud:
        return "cloud";
    case AlertStorageLocation::localMac:
        return "localMac";
    case AlertStorageLocation::pendingUpload:
        break;
    }
    return "pendingUpload";
}

void addList(Json& state, MacAlertsService& service)
{
    for (const AlertRow& row : *service.alerts.get()) {
        state["alertRows"].push_back(
            {{"reason", rawValue(row.alert.reason)}, {"storage", nameOf(row.storageLocation)}});
    }
    for (const AlertSection& section : service.sections()) {
        state["sections"].push_back(section.id);
    }
    state["infoMessage"] = jsonOf(service.infoMessage.get());
    state["errorMessage"] = jsonOf(service.errorMessage.get());
}

void addApp(Json& state, SentrelApp& app)
{
    addList(state, app.alertsService());
    CloudKitService& cloud = app.cloud();
    state["icloud"] = {{"isAvailable", cloud.isAvailable.get()},
                       {"isReachable", cloud.isReachable.get()},
                       {"lastSyncError", jsonOf(cloud.lastSyncError.get())}};
    state["syncError"] = jsonOf(app.presence().syncError.get());
}

/// Null if the server doesn't let the phone read.
Json phoneOf(CompanionPhone& phone)
{
    try {
        Json macs = Json::array();
        for (const auto& mac : phone.macs()) {
            macs.push_back({{"deviceName", mac.deviceName}, {"isArmed", mac.isArmed}});
        }
        return {{"alerts", phone.alerts().size()},
                {"notifications", phone.notifications().size()},
                {"macs", std::move(macs)}};
    } catch (const ports::CloudError&) {
        return nullptr;
    }
}

/// Number of alerts in the signed-in account, read from the server.
std::uint64_t alertsInCloud(MacSession& session)
{
    const CloudLink& link = session.mac().iCloud.link;
    const bool isSignedIn = link.accountStatus() != ports::CloudAccountStatus::noAccount;
    return isSignedIn ? session.cloudServer().count(link.device().user, alertRecordType) : 0;
}

std::size_t pendingDeletions(MacSession& session)
{
    StoredDefaults stored{session.mac()};
    return PendingCloudDeletionStore{PendingCloudDeletionStore::standardKey, stored.get()}.ids().size();
}

} // namespace

void addCloud(Json& state, MacSession& session)
{
    state["cloudAlerts"] = alertsInCloud(session);
    state["pendingDeletions"] = pendingDeletions(session);
    state["phone"] = phoneOf(session.phone());
    state["alertRows"] = Json::array();
    state["sections"] = Json::array();
    for (const char* key : {"infoMessage", "errorMessage", "icloud", "syncError"}) {
        state[key] = nullptr;
    }
    if (session.app() != nullptr) {
        addApp(state, *session.app());
    }
}

} // namespace sentrel::simulation
