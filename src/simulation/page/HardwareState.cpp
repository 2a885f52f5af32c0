#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/page/PageState.hpp"
#include "simulation/page/PageWords.hpp"
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

Json audioJson(const MacState& state)
{
    const auto defaultOutput = state.defaultOutput();
    Json devices = Json::array();
    for (const AudioDevice& device : state.audioDevices()) {
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

Json cameraJson(const MacState& state, PageFiles& files)
{
    const CameraView view = state.cameraView();
    return {{"lamp", state.isCameraRunning()},
            {"brightness", view.brightness ? Json(*view.brightness) : Json(nullptr)},
            {"source", wordFor(cameraSourceWords, view.isFile)},
            {"scene", files.addImage(view.jpeg)}};
}

} // namespace

Json PageState::run() const
{
    const MacState state{session_};
    return {{"title", title_},
            {"process", wordFor(processWords, session_.app() != nullptr)},
            {"isArmed", state.isArmed()},
            {"isAlarmActive", state.isAlarmActive()},
            {"date", since1970(session_.mac().wallClock.now())},
            {"timeZone", session_.mac().calendar.timeZone()},
            {"language", session_.mac().calendar.languageTag()}};
}

Json PageState::hardware()
{
    const auto threshold = motionThreshold(session_);
    const MacState state{session_};
    return {{"power", wordFor(powerWords, state.power())},
            {"lid", wordFor(lidWords, state.lid())},
            {"displays", state.displays().size()},
            {"isAsleep", session_.isAsleep()},
            {"audio", audioJson(state)},
            {"music", wordFor(musicWords, state.music())},
            {"camera", cameraJson(state, files_)},
            {"accelerometer", wordFor(sampleWords, state.accelerometer())},
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
            {"quota", wordFor(quotaWords, session_.cloudServer().isFull(user))},
            {"latency", toSeconds(iCloud.link.latency())},
            {"faults", std::move(faults)},
            {"requests", iCloud.link.requests()}};
}

Json PageState::phone()
{
    auto phone = MacState{session_}.phone();
    if (!phone) {
        return nullptr;
    }
    Json alerts = Json::array();
    std::set<std::string> present;
    for (auto& alert : phone->alerts) {
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
    for (const auto& notification : std::views::reverse(phone->notifications)) {
        notifications.push_back({{"text", notification.text}, {"date", since1970(notification.date)}});
    }
    Json macs = Json::array();
    for (const auto& mac : phone->macs) {
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
