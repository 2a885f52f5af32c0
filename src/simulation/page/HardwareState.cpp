#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/page/PageState.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "simulation/stage/MacWords.hpp"
#include "simulation/stage/MotionMeter.hpp"

#include <nlohmann/json.hpp>
#include <ranges>
#include <set>

// The state of the Mac's hardware, the connection to iCloud, and the phone.

namespace sentrel::simulation {

namespace {

double since1970(Date date)
{
    return date.secondsSinceReferenceDate + Date::secondsFrom1970To2001;
}

std::string_view motionWord(const SimulatedAccelerometer& accelerometer)
{
    return !accelerometer.isPresent() ? "absent" : accelerometer.isResting() ? "resting" : "silent";
}

Json audioJson(const SimulatedAudio& audio)
{
    const auto defaultOutput = audio.defaultOutput();
    Json devices = Json::array();
    for (const AudioDevice& device : audio.devices()) {
        if (device.hasOutput()) {
            devices.push_back({{"id", device.id},
                               {"name", device.name},
                               {"transport", wordFor(transportWords, device.transport)},
                               {"volume", device.volume().value_or(1.0F)},
                               {"isMuted", device.isMuted()},
                               {"isDefault", defaultOutput == device.id}});
        }
    }
    return {{"devices", std::move(devices)}};
}

Json cameraJson(const SimulatedCamera& camera, PageFiles& files)
{
    const CameraView view = camera.view();
    return {{"lamp", camera.isSessionRunning()},
            {"brightness", view.brightness ? Json(*view.brightness) : Json(nullptr)},
            {"source", camera.hasPhotoFile() ? "webcam" : "scene"},
            {"scene", files.addImage(view.jpeg)}};
}

} // namespace

Json PageState::run() const
{
    const MacState state{session_};
    return {{"title", title_},
            {"process", session_.app() != nullptr ? "running" : "ended"},
            {"isArmed", state.isArmed()},
            {"isAlarmActive", state.isAlarmActive()},
            {"date", since1970(session_.mac().wallClock.now())},
            {"timeZone", session_.mac().calendar.timeZone()},
            {"language", session_.mac().calendar.languageTag()}};
}

Json PageState::hardware()
{
    SimulatedMac& mac = session_.mac();
    const auto threshold = motionThreshold(session_);
    const MacState state{session_};
    return {{"power", wordFor(powerWords, state.power())},
            {"lid", wordFor(lidWords, state.lid())},
            {"displays", mac.displays.count()},
            {"isAsleep", session_.isAsleep()},
            {"audio", audioJson(mac.audio)},
            {"music", wordFor(musicWords, mac.music.playback())},
            {"camera", cameraJson(mac.camera, files_)},
            {"accelerometer", motionWord(mac.accelerometer)},
            {"threshold", threshold ? Json(*threshold) : Json(nullptr)}};
}

Json PageState::sound()
{
    Json sounds = Json::array();
    for (const Sounding& sounding : session_.mac().speaker.sounding()) {
        if (sounding.gain > 0.0F && sounding.samples != nullptr && !sounding.samples->empty()) {
            sounds.push_back({{"id", sounding.id},
                              {"url", files_.addSound(sounding.samples)},
                              {"loops", sounding.kind == Sounding::Kind::loop},
                              {"gain", sounding.gain},
                              {"device", sounding.device ? Json(*sounding.device) : Json(nullptr)}});
        }
    }
    return sounds;
}

Json PageState::cloud() const
{
    SimulatedICloud& iCloud = session_.mac().iCloud;
    Json faults = Json::array();
    for (const CloudFault& fault : iCloud.link.faults().all()) {
        faults.push_back({{"name", cloudErrorName(fault.error.code)}, {"times", fault.times}});
    }
    const std::string user = iCloud.link.device().user;
    return {{"network", wordFor(networkWords, iCloud.network.isUp())},
            {"account", wordFor(accountWords, iCloud.link.accountStatus())},
            {"user", user},
            {"quota", session_.cloudServer().isFull(user) ? "full" : "ok"},
            {"latency", toSeconds(iCloud.link.latency())},
            {"faults", std::move(faults)},
            {"requests", iCloud.link.requests()}};
}

Json PageState::phone()
{
    CompanionPhone& phone = session_.phone();
    Json alerts = Json::array();
    std::set<std::string> present;
    for (auto& alert : phone.alerts()) {
        present.insert(alert.id);
        Json photo = nullptr;
        if (alert.photo) {
            photo = photoUrl(alert.id, std::make_shared<const Bytes>(*std::move(alert.photo)));
        }
        alerts.push_back({{"id", alert.id},
                          {"title", alert.triggerName},
                          {"device", alert.deviceName},
                          {"date", since1970(alert.timestamp)},
                          {"photo", std::move(photo)}});
    }
    std::erase_if(phonePhotos_, [&](const auto& entry) { return !present.contains(entry.first); });
    Json notifications = Json::array();
    const auto shown = phone.notifications();
    for (const auto& notification : std::views::reverse(shown)) {
        notifications.push_back({{"text", notification.text}, {"date", since1970(notification.date)}});
    }
    Json macs = Json::array();
    for (const auto& mac : phone.macs()) {
        macs.push_back({{"id", mac.deviceID},
                        {"name", mac.deviceName},
                        {"isArmed", mac.isArmed},
                        {"isCompatible", mac.isCompatible},
                        {"lastSeen", since1970(mac.lastSeen)}});
    }
    return {{"alerts", std::move(alerts)}, {"notifications", std::move(notifications)}, {"macs", std::move(macs)}};
}

std::string PageState::photoUrl(const std::string& alert, const std::shared_ptr<const Bytes>& photo)
{
    // An alert's photo never changes: keeping the first copy lets `files_` recognise it without hashing.
    return files_.addImage(phonePhotos_.try_emplace(alert, photo).first->second);
}

} // namespace sentrel::simulation
