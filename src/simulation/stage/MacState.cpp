#include "simulation/stage/MacState.hpp"

#include "cloud/AlertRecord.hpp"
#include "outputs/PhotoProcessing.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/StoredDefaults.hpp"
#include "ui/Description.hpp"
#include "ui/Node.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <tuple>

namespace sentrel::simulation {

std::filesystem::path alertsFolder(SimulatedMac& mac)
{
    return mac.disk() / "Application Support" / mac.host.bundleIdentifier().value_or("Sentrel") / "Alerts";
}

namespace {

using Mac = MacDescription;

constexpr std::string_view armedIcon = "MenuBarIconArmed";
constexpr std::string_view stopButton = "stopAlarm"; // in the menu

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

void addText(std::vector<std::string>& texts, const std::string& text)
{
    if (!text.empty()) {
        texts.push_back(text);
    }
}

} // namespace

MacState::MacState(MacSession& session) : session_(session), mac_(session.mac())
{
}

const std::vector<StoredAlert>& MacState::alerts() const
{
    if (!alerts_) {
        alerts_ = alertsOnDisk(mac_);
    }
    return *alerts_;
}

Mac::Power MacState::power() const
{
    const auto isOnAC = mac_.power.isOnAC();
    return !isOnAC ? Mac::Power::unknown : *isOnAC ? Mac::Power::ac : Mac::Power::battery;
}

Mac::Lid MacState::lid() const
{
    const auto isClosed = mac_.lid.isClosed();
    return !isClosed ? Mac::Lid::absent : *isClosed ? Mac::Lid::closed : Mac::Lid::open;
}

Mac::Accelerometer MacState::accelerometer() const
{
    return !mac_.accelerometer.isPresent()  ? Mac::Accelerometer::absent
           : mac_.accelerometer.isResting() ? Mac::Accelerometer::resting
                                            : Mac::Accelerometer::present;
}

SimulatedMusic::Playback MacState::music() const
{
    return mac_.music.playback();
}

bool MacState::isCameraRunning() const
{
    return mac_.camera.isSessionRunning();
}

CameraView MacState::cameraView() const
{
    return mac_.camera.view();
}

std::optional<SimulatedStatusBar::Item> MacState::menuBarItem() const
{
    return mac_.statusBar.item();
}

bool MacState::isArmed() const
{
    const auto item = menuBarItem();
    return item && item->image == armedIcon;
}

bool MacState::isAlarmActive() const
{
    const auto item = menuBarItem();
    return item && ui::find(item->menu, stopButton).has_value();
}

std::optional<std::vector<std::string>> MacState::menu() const
{
    const auto item = menuBarItem();
    return item && item->isMenuOpen ? std::optional{ui::visibleTexts(item->menu)} : std::nullopt;
}

std::vector<ports::Screen> MacState::displays() const
{
    return mac_.displays.connected();
}

std::vector<MacState::SeenWindow> MacState::windows() const
{
    return mac_.displays.seenWindows();
}

std::vector<MacState::SeenWindow> MacState::covers() const
{
    return mac_.displays.seenCovers();
}

std::optional<SimulatedAlerts::Shown> MacState::systemAlert() const
{
    return mac_.alerts.open();
}

std::vector<std::string> MacState::dialogs() const
{
    std::vector<std::string> texts;
    for (const SeenWindow& window : windows()) {
        for (const ui::Node& node : ui::nodesOf(window->content)) {
            if (const auto* const dialog = ui::elementOf<ui::Dialog>(*node.view)) {
                addText(texts, dialog->title);
                addText(texts, dialog->message);
            }
        }
    }
    if (const auto alert = systemAlert()) {
        addText(texts, alert->content.messageText);
        addText(texts, alert->content.informativeText);
    }
    return texts;
}

Json MacState::window(std::string_view identifier) const
{
    const auto window = mac_.displays.window(identifier);
    if (!window) {
        return {{"visible", false}, {"size", nullptr}, {"texts", Json::array()}};
    }
    const ports::Rectangle content = contentOf(*window, window->frame);
    return {{"visible", window->isVisible},
            {"size", {content.width, content.height}},
            {"texts", window->isVisible ? ui::visibleTexts(window->content) : std::vector<std::string>{}}};
}

std::optional<std::string> MacState::coverMessage() const
{
    const auto shown = covers();
    const auto message = shown.empty() ? std::nullopt : ui::find(shown.front()->content, "message");
    return message ? std::optional{ui::visibleText(*message->view)} : std::nullopt;
}

Json MacState::sound() const
{
    const auto sound = session_.sound();
    return sound ? Json{{"mode", sound->mode}, {"device", sound->device}, {"volume", jsonNumber(sound->volume)}}
                 : Json{};
}

std::vector<AudioDevice> MacState::audioDevices() const
{
    return mac_.audio.devices();
}

std::optional<ports::AudioObjectId> MacState::defaultOutput() const
{
    return mac_.audio.defaultOutput();
}

std::optional<Bytes> MacState::photoOf(const StoredAlert& alert) const
{
    if (!alert.alert.photoFileName) {
        return std::nullopt;
    }
    posix::PosixFileSystem files;
    return files.read(alertsFolder(mac_) / std::filesystem::path{*alert.alert.photoFileName}.filename());
}

Json MacState::lastPhoto() const
{
    const auto photo = alerts().empty() ? std::nullopt : photoOf(alerts().back());
    if (!photo) {
        return nullptr;
    }
    TurboImageCodec codec;
    const auto size = codec.pixelSize(*photo);
    return {{"width", size ? Json(size->width) : Json{}},
            {"height", size ? Json(size->height) : Json{}},
            {"brightness", photoBrightness(codec, *photo)}};
}

Json MacState::settings() const
{
    StoredDefaults stored{mac_};
    return encodeAlarmSettings(SettingsStore{session_.mainActor(), stored.get()}.settings());
}

std::size_t MacState::pendingDeletions() const
{
    StoredDefaults stored{mac_};
    return PendingCloudDeletionStore{PendingCloudDeletionStore::standardKey, stored.get()}.ids().size();
}

std::uint64_t MacState::cloudAlerts() const
{
    const CloudLink& link = mac_.iCloud.link;
    const bool isSignedIn = link.accountStatus() != ports::CloudAccountStatus::noAccount;
    return isSignedIn ? session_.cloudServer().count(link.device().user, alertRecordType) : 0;
}

std::optional<MacState::Phone> MacState::phone() const
{
    try {
        CompanionPhone& phone = session_.phone();
        return Phone{phone.alerts(), phone.notifications(), phone.macs()};
    } catch (const ports::CloudError&) {
        return std::nullopt;
    }
}

} // namespace sentrel::simulation
