#include "simulation/stage/MacState.hpp"

#include "outputs/PhotoProcessing.hpp"
#include "simulation/stage/CloudState.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/ShellState.hpp"
#include "simulation/stage/StoredDefaults.hpp"
#include "ui/Node.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

namespace {

Json textOrNull(const std::optional<std::string>& text)
{
    return text ? Json(*text) : Json(nullptr);
}

std::vector<StoredAlert> alertsOnDisk(SimulatedMac& mac)
{
    posix::PosixFileSystem files;
    const auto folder = alertsFolder(mac);
    std::vector<StoredAlert> alerts;
    for (const std::filesystem::path name : files.list(folder).value_or(std::vector<std::string>{})) {
        const auto content = name.extension() == ".json" ? files.read(folder / name) : std::nullopt;
        const auto document = content ? parseJson(*content) : std::nullopt;
        if (auto stored = document ? decodeStoredAlert(*document) : std::nullopt) {
            alerts.push_back(*std::move(stored));
        }
    }
    std::ranges::sort(alerts, [](const StoredAlert& left, const StoredAlert& right) {
        return std::tie(left.alert.timestamp, left.alert.id) < std::tie(right.alert.timestamp, right.alert.id);
    });
    return alerts;
}

/// The content of the alert's photo file; none without a photo or if the file is missing.
std::optional<Bytes> photoOf(SimulatedMac& mac, const StoredAlert& stored)
{
    if (!stored.alert.photoFileName) {
        return std::nullopt;
    }
    posix::PosixFileSystem files;
    return files.read(alertsFolder(mac) / std::filesystem::path{*stored.alert.photoFileName}.filename());
}

/// Measurements of the last alert's photo; a file that is not an image has no size.
Json lastPhotoOf(SimulatedMac& mac, const std::vector<StoredAlert>& alerts)
{
    const auto photo = alerts.empty() ? std::nullopt : photoOf(mac, alerts.back());
    if (!photo) {
        return nullptr;
    }
    TurboImageCodec codec;
    const auto size = codec.pixelSize(*photo);
    return {{"width", size ? Json(size->width) : Json(nullptr)},
            {"height", size ? Json(size->height) : Json(nullptr)},
            {"brightness", photoBrightness(codec, *photo)}};
}

Json lastAlertOf(SimulatedMac& mac, const std::vector<StoredAlert>& alerts)
{
    if (alerts.empty()) {
        return nullptr;
    }
    const StoredAlert& last = alerts.back();
    return {{"reason", rawValue(last.alert.reason)},
            {"deviceName", last.alert.deviceName},
            {"photo", photoOf(mac, last).has_value()},
            {"pendingUpload", last.pendingUpload}};
}

void addAlerts(Json& state, SimulatedMac& mac)
{
    const auto alerts = alertsOnDisk(mac);
    Json reasons = Json::array();
    for (const StoredAlert& stored : alerts) {
        reasons.push_back(rawValue(stored.alert.reason));
    }
    state["alerts"] = alerts.size();
    state["lastAlert"] = lastAlertOf(mac, alerts);
    state["photo"] = lastPhotoOf(mac, alerts);
    state["alertReasons"] = std::move(reasons);
    state["pendingUploads"] =
        std::count_if(alerts.begin(), alerts.end(), [](const StoredAlert& stored) { return stored.pendingUpload; });
}

/// Notices and the last trigger, from the product: the window that shows them is mostly closed.
void addCoordinator(Json& state, const AlarmCoordinator& coordinator)
{
    state["statusMessage"] = coordinator.statusMessage.get();
    const auto& lastTrigger = coordinator.lastTrigger.get();
    state["lastTrigger"] = lastTrigger ? Json(rawValue(*lastTrigger)) : Json(nullptr);
    state["lastError"] = textOrNull(coordinator.lastError.get());
    state["cameraWarning"] = textOrNull(coordinator.cameraWarning.get());
    state["motionWarning"] = textOrNull(coordinator.motionWarning.get());
}

/// The state while the product isn't running: nothing shown, nothing active.
void addNoCoordinator(Json& state)
{
    for (const char* key : {"statusMessage", "lastTrigger", "lastError", "cameraWarning", "motionWarning"}) {
        state[key] = nullptr;
    }
}

void addAudio(Json& state, MacSession& session)
{
    SimulatedAudio& audio = session.mac().audio;
    state["sound"] = nullptr;
    if (const auto sound = session.sound()) {
        state["sound"] = {{"mode", sound->mode}, {"device", sound->device}, {"volume", jsonNumber(sound->volume)}};
    }
    Json devices = Json::object();
    for (const AudioDevice& device : audio.devices()) {
        const auto volume = device.volume();
        devices[std::to_string(device.id)] = {{"volume", volume ? jsonNumber(*volume) : Json(nullptr)},
                                              {"muted", device.isMuted()}};
    }
    state["devices"] = std::move(devices);
    const auto defaultOutput = audio.defaultOutput();
    state["defaultOutput"] = defaultOutput ? Json(*defaultOutput) : Json("none");
}

void addCover(Json& state, MacSession& session)
{
    const auto covers = session.mac().displays.covers();
    const auto message = covers.empty() ? std::nullopt : ui::find(covers.front().content, "message");
    const bool isLockedOut = session.app() != nullptr && session.app()->cover().lockoutEnd();
    state["cover"] = covers.empty() ? "hidden" : isLockedOut ? "locked-out" : "shown";
    state["coverMessage"] = message ? Json(ui::visibleText(*message->view)) : Json(nullptr);
    state["coverWindows"] = covers.size();
}

std::string_view nameOf(SimulatedMusic::Playback playback)
{
    switch (playback) {
    case SimulatedMusic::Playback::playing:
        return "playing";
    case SimulatedMusic::Playback::paused:
        return "paused";
    case SimulatedMusic::Playback::absent:
        break;
    }
    return "absent";
}

Json storedSettings(MacSession& session)
{
    StoredDefaults stored{session.mac()};
    return encodeAlarmSettings(SettingsStore{session.mainActor(), stored.get()}.settings());
}

} // namespace

std::filesystem::path alertsFolder(SimulatedMac& mac)
{
    return mac.disk() / "Application Support" / mac.host.bundleIdentifier().value_or("Sentrel") / "Alerts";
}

Json stateOf(MacSession& session)
{
    Json state = Json::object();
    SentrelApp* const app = session.app();
    if (app != nullptr) {
        addCoordinator(state, app->coordinator());
    } else {
        addNoCoordinator(state);
    }
    addAlerts(state, session.mac());
    addCloud(state, session);
    addAudio(state, session);
    addCover(state, session);
    addShell(state, session);
    state["music"] = nameOf(session.mac().music.playback());
    state["cameraSession"] = session.mac().camera.isSessionRunning() ? "on" : "off";
    state["loginsAsked"] = session.mac().login.reasonsAsked().size();
    state["assertions"] = session.mac().assertions.held();
    state["settings"] = storedSettings(session);
    return state;
}

} // namespace sentrel::simulation
