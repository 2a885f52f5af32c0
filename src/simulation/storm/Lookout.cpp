#include "simulation/storm/Lookout.hpp"

#include "cloud/AlertRecord.hpp"
#include "core/SettingsStore.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "simulation/stage/StoredDefaults.hpp"
#include "ui/Node.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>

#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 33)
#include <malloc.h>
#endif

namespace sentrel::simulation {

namespace {

constexpr std::string_view armedReason = "Sentrel is armed and monitoring";
constexpr std::string_view alarmReason = "Sentrel is processing an alarm event";

SeenAlerts alertsOf(const MacState& state)
{
    SeenAlerts alerts;
    for (const StoredAlert& stored : state.alerts()) {
        alerts[stored.alert.id] = {std::string{rawValue(stored.alert.reason)}, stored.pendingUpload};
    }
    return alerts;
}

} // namespace

Lookout::Lookout(MacSession& session) : session_(session)
{
    session_.mac().iCloud.link.onRequest([this](CloudOperation operation, CloudRequestPhase phase) {
        const bool writes = operation == CloudOperation::modify || operation == CloudOperation::save;
        mustAskCloud_ = mustAskCloud_ || (writes && phase == CloudRequestPhase::afterEffect);
    });
}

Lookout::~Lookout()
{
    session_.mac().iCloud.link.onRequest({});
}

template <class Value> void Lookout::set(Value& place, const Value& value)
{
    if (place != value) {
        place = value;
        hasChanged_ = true;
    }
}

void Lookout::happened(const Event& event)
{
    const std::string_view name = event.name;
    if (name.starts_with("assertion.")) {
        mustReadAssertions_ = true;
    } else if (name == "volume.changed" || name == "default-output.changed" || name.starts_with("audio-device.")) {
        mustReadOutput_ = true;
    } else if (name == "power.changed" || name == "lid.changed") {
        mustReadPower_ = true;
    }
}

void Lookout::expectAnything()
{
    mustReadOutput_ = mustReadAssertions_ = mustReadPower_ = mustAskCloud_ = mustReadDisk_ = true;
    menuVersion_ = screenVersion_ = 0;
    list_ = nullptr;
}

const Sight& Lookout::look()
{
    hasChanged_ = false;
    SimulatedMac& mac = session_.mac();
    sight_.at = session_.seconds();
    set(sight_.isRunning, session_.app() != nullptr);
    set(sight_.isAsleep, session_.isAsleep());
    lookAtScreen();
    lookAtSound();
    if (std::exchange(mustReadPower_, false)) {
        set(sight_.isOnAC, mac.power.isOnAC().value_or(true));
        set(sight_.isLidClosed, mac.lid.isClosed().value_or(false));
    }
    if (std::exchange(mustReadAssertions_, false)) {
        const auto held = mac.assertions.held();
        set(sight_.holdsArmedAssertion, std::ranges::find(held, armedReason) != held.end());
        set(sight_.holdsAlarmAssertion, std::ranges::find(held, alarmReason) != held.end());
    }
    lookAtDisk();
    lookAtList();
    lookAtCloud();
    sight_.timers = session_.clock().armedTimers();
    return sight_;
}

void Lookout::lookAtScreen()
{
    SimulatedMac& mac = session_.mac();
    if (const auto version = mac.statusBar.version() + 1; version != menuVersion_) {
        menuVersion_ = version;
        const auto item = mac.statusBar.item();
        const MacState state{session_};
        set(sight_.showsArmed, state.isArmed());
        set(sight_.menuSaysArmed, item && ui::find(item->menu, "armedState").has_value());
        set(sight_.offersStop, state.isAlarmActive());
    }
    if (const auto version = mac.displays.version() + 1; version != screenVersion_) {
        screenVersion_ = version;
        set(sight_.covers, mac.displays.covers().size());
        set(sight_.displays, mac.displays.count());
    }
}

void Lookout::lookAtSound()
{
    SimulatedMac& mac = session_.mac();
    const auto sounding = mac.speaker.sounding(longestBeepPause);
    set(sight_.isSounding, !sounding.empty());
    set(sight_.isAudible, std::ranges::any_of(sounding, [](const Sounding& sound) { return sound.gain > 0.0F; }));
    // The product's own changes of the output are not noted.
    constexpr double afterChange = 5.0; // seconds
    if (sight_.isSounding || hasChanged_) {
        outputMovesUntil_ = sight_.at + afterChange;
    }
    if (std::exchange(mustReadOutput_, false) || sight_.at <= outputMovesUntil_) {
        OutputState output{mac.audio.defaultOutput(), {}};
        for (const AudioDevice& device : mac.audio.devices()) {
            output.devices[device.id] = {device.volume(), device.isMuted()};
        }
        set(sight_.output, output);
    }
}

void Lookout::lookAtDisk()
{
    SimulatedMac& mac = session_.mac();
    const auto counts = mac.files.counts();
    const auto writes = counts.calls - counts.reads;
    if (writes == writes_ && !mustReadDisk_) {
        return;
    }
    writes_ = writes;
    mustReadDisk_ = false;
    const MacState state{session_};
    StoredDefaults stored{mac};
    const auto document = stored.get().data("alarmSettings");
    const auto json = document ? parseJson(*document) : std::nullopt;
    sight_.settings = json ? decodeAlarmSettings(*json) : std::nullopt;
    sight_.owedDeletions = state.pendingDeletions();
    sight_.onDisk = alertsOf(state);
    hasChanged_ = true;
}

void Lookout::lookAtCloud()
{
    SimulatedMac& mac = session_.mac();
    CloudLink& link = mac.iCloud.link;
    set(sight_.isOnline, mac.iCloud.network.isUp());
    set(sight_.user, link.device().user);
    // All users are looked at: a request that an earlier one has begun still ends in the database of that one.
    sight_.inCloud.try_emplace(sight_.user);
    set(sight_.hasAccount, link.accountStatus() == ports::CloudAccountStatus::available);
    // The Mac's state is published every 30 s, which changes no alert.
    constexpr double alertsAreOnTheirWay = 600.0; // seconds
    if (!sight_.onDisk.empty() || sight_.owedDeletions > 0 || hasChanged_) {
        asksCloudUntil_ = sight_.at + alertsAreOnTheirWay;
    }
    if (!mustAskCloud_ || sight_.at > asksCloudUntil_) {
        return;
    }
    mustAskCloud_ = false;
    set(sight_.isStorageFull, session_.cloudServer().isFull(sight_.user));
    for (auto& [user, alerts] : sight_.inCloud) {
        std::set<UUID> ids;
        for (const std::string& name : session_.cloudServer().names(user, alertRecordType)) {
            if (const auto id = UUID::parse(name)) {
                ids.insert(*id);
            }
        }
        set(alerts, ids);
    }
}

void Lookout::askPhone()
{
    sight_.phoneAskedAt = session_.seconds();
    sight_.phoneSaysArmed.reset();
    try {
        const auto macs = session_.phone().macs();
        if (!macs.empty()) {
            sight_.phoneSaysArmed = macs.front().isArmed;
        }
    } catch (const ports::CloudError&) {
        // The phone knows nothing.
    }
}

void Lookout::askMemory()
{
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 33)
    const struct mallinfo2 info = ::mallinfo2();
    sight_.memory = info.uordblks + info.hblkhd;
    sight_.memoryReadAt = sight_.at;
#endif
}

void Lookout::lookAtList()
{
    if (session_.app() == nullptr) {
        list_ = nullptr;
        set(sight_.listed, {});
        return;
    }
    const AlertList& list = session_.app()->alertsService().alerts.get();
    if (list == list_) {
        return;
    }
    list_ = list;
    std::map<UUID, SeenRow> rows;
    for (const AlertRow& row : *list) {
        rows[row.alert.id] = {row.storageLocation, std::string{rawValue(row.alert.reason)}};
    }
    set(sight_.listed, rows);
}

} // namespace sentrel::simulation
