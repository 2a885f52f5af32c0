#include "simulation/stage/MacSession.hpp"

#include "core/Events.hpp"
#include "simulation/Events.hpp"
#include "ui/Node.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::string_view passcodeField = "passcode";

/// Whether the first cover's field holds text, as its row of dots shows.
bool holdsText(const SimulatedDisplays& displays)
{
    const auto covers = displays.covers();
    const auto node = covers.empty() ? std::nullopt : ui::find(covers.front().content, passcodeField);
    const auto* const field = node ? ui::elementOf<ui::SecureField>(*node->view) : nullptr;
    return field != nullptr && !field->text.value.empty();
}

/// Whether the sound can be heard: false for silent samples and for a gain of 0.
bool isAudible(const Sounding& sounding)
{
    return sounding.gain > 0.0F && std::ranges::any_of(*sounding.samples, [](float sample) { return sample != 0.0F; });
}

} // namespace

bool storePasscode(UnlockPasscodeStore& store, std::string_view passcode)
{
    const auto record = store.makeRecord(bytesOf(passcode), store.makeSalt(), UnlockPasscodeStore::currentIterations);
    return record && store.save(record->view());
}

MacSession::MacSession(const MacDescription& description, std::filesystem::path disk, std::filesystem::path resources,
                       std::uint64_t seed, Date date, ServerDisk server)
    : serverClock_(hardware_, date),
      cloudServer_(server == ServerDisk::folder ? disk / "iCloud" : std::filesystem::path{}, serverClock_, log_),
      phone_(cloudServer_, serverClock_, description.iCloud.user.value_or("owner")),
      mac_(
          {
              .process = process_,
              .hardware = hardware_,
              .journal = log_,
              .disk = std::move(disk),
              .resources = std::move(resources),
              .cloudServer = cloudServer_,
              .seed = seed,
              .date = date,
              .hanging = &hanging_,
          },
          description)
{
    log_.observe([this](const Event& event) {
        const auto started = as<events::AlarmStarted>(event);
        if (started && started->mode == "tone") {
            listenToAlarm();
        }
        const auto login = as<events::LoginAsked>(event);
        if (login && login->answer != nameOf(LoginAnswer::succeed)) {
            isRelaunching_ = false;
        }
    });
    hanging_.onHang([this] { restFromHanging(); });
    phone_.onNotification([this](const auto& shown) { log_.note(events::PhoneNotified{shown.text, shown.alertID}); });
}

MacSession::~MacSession()
{
    endProcess();
}

void MacSession::launch()
{
    bury();
    isRelaunching_ = false;
    if (app_ != nullptr) {
        return;
    }
    log_.note(events::Launched{});
    mac_.application.start([this] { processHasEnded(); });
    app_ = std::make_unique<SentrelApp>(mac_.startProcess());
    onMain([this](SentrelApp&) { mac_.application.finishLaunching(); });
}

void MacSession::crash()
{
    bury();
    if (app_ == nullptr) {
        return;
    }
    log_.note(events::Crashed{});
    endProcess();
}

/// The process ends inside a call: nothing of it runs any more. Its objects go once no job is under way.
void MacSession::dieInCall(CallFault::Fate fate)
{
    log_.note(events::Crashed{});
    if (fate == CallFault::Fate::losesPower) {
        mac_.files.cutPowerAfter(0);
    }
    hasDied_ = true;
    process_.setAsleep(true);
}

void MacSession::bury()
{
    if (std::exchange(hasDied_, false)) {
        endProcess();
        mac_.files.restorePower();
    }
}

SentrelApp* MacSession::app()
{
    bury();
    return app_.get();
}

void MacSession::restFromHanging()
{
    if (!hanging_.isPrepared()) {
        return;
    }
    const auto mayHang = [](const auto& port) { return port.second->isSet("hangs"); };
    const auto endsInCall = [](const CallFault& fault) { return fault.fate != CallFault::Fate::raises; };
    if (!hanging_.isAnyWaiting() && !std::ranges::any_of(mac_.faults(), mayHang) &&
        !std::ranges::any_of(plannedFaults_.waiting(), endsInCall)) {
        hanging_.rest();
    }
}

void MacSession::quit()
{
    onMain([this](SentrelApp&) { mac_.application.terminate(); });
}

void MacSession::relaunch()
{
    bury();
    isRelaunching_ = true;
    if (app_ == nullptr) {
        return launch();
    }
    quit();
}

/// The process ends inside its last call. It is destroyed a turn later, and does nothing until then.
void MacSession::processHasEnded()
{
    process_.setAsleep(true);
    post(hardware_.mainExecutor(), [this] {
        endProcess();
        if (isRelaunching_) {
            launch();
        }
    });
}

void MacSession::endProcess()
{
    hanging_.end();
    app_.reset();
    process_.endProcess();
    process_.setAsleep(isAsleep_);
    mac_.endProcess();
}

void MacSession::sleep()
{
    log_.note(events::Slept{});
    isAsleep_ = true;
    process_.setAsleep(true);
    mac_.setAsleep(true);
}

void MacSession::wake()
{
    log_.note(events::Woke{});
    bury();
    isAsleep_ = false;
    process_.setAsleep(false);
    mac_.setAsleep(false);
    mac_.workspace.post("NSWorkspaceDidWakeNotification");
    clock_.runReady();
}

void MacSession::openLid()
{
    mac_.lid.open();
}

void MacSession::closeLid()
{
    mac_.lid.close();
    // Closing the lid turns off its screen.
    sleepScreens();
}

void MacSession::sleepScreens()
{
    mac_.workspace.post("NSWorkspaceScreensDidSleepNotification");
    clock_.runReady();
}

void MacSession::changeSettings(const std::function<void(AlarmSettings&)>& change)
{
    onMain([change](SentrelApp& app) {
        AlarmSettings settings = app.settings().settings();
        change(settings);
        app.settings().setSettings(settings);
    });
}

void MacSession::stopAlarm()
{
    onMain([](SentrelApp& app) { app.coordinator().stopAlarm(); });
}

void MacSession::setPasscode(std::string_view passcode)
{
    onMain([this, passcode = std::string{passcode}](SentrelApp& app) {
        log_.note(events::PasscodeSet{storePasscode(app.passcodes(), passcode)});
    });
}

void MacSession::typePasscode(std::string_view passcode)
{
    onMain([this, passcode = std::string{passcode}](SentrelApp&) {
        SimulatedDisplays& displays = mac_.displays;
        if (displays.click(0, passcodeField) != ui::Interaction::done) {
            log_.note(events::TypedNowhere{});
            return;
        }
        while (holdsText(displays) && displays.pressKey(ui::Key::deleteKey) == ui::Interaction::done) {
        }
        if (!displays.type(passcode) || displays.pressKey(ui::Key::returnKey) != ui::Interaction::done) {
            log_.note(events::TypedNowhere{});
        }
    });
}

void MacSession::commandByPhone(const CompanionPhone::Command& command)
{
    try {
        const auto macs = phone_.macs();
        if (macs.empty()) {
            log_.note(events::PhoneFoundNoMac{});
            return;
        }
        const std::int64_t sequence = phone_.send(macs.front().deviceID, command);
        log_.note(events::PhoneCommand{sequence, command.arm});
    } catch (const ports::CloudError& error) {
        log_.note(events::PhoneRefused{error.description});
    }
}

void MacSession::onMain(const std::function<void(SentrelApp&)>& function)
{
    bury();
    if (app_ == nullptr) {
        return;
    }
    post(process_.mainExecutor(), [this, function] {
        try {
            function(*app_);
        } catch (const Raised& raised) {
            // AppKit takes what comes out of the handling of an event, and goes on.
            log_.note(events::EventRaised{raised.port});
        }
    });
    clock_.runReady();
}

void MacSession::listenToAlarm()
{
    if (const auto heard = sound()) {
        log_.note(events::AlarmHeard{heard->mode, heard->device, static_cast<double>(heard->volume)});
    } else {
        log_.note(events::AlarmUnheard{});
    }
}

std::optional<AlarmSound> MacSession::sound() const
{
    std::optional<AlarmSound> heard;
    for (const Sounding& sounding : mac_.speaker.sounding(longestBeepPause)) {
        const auto device = sounding.device ? mac_.audio.device(*sounding.device) : std::nullopt;
        if (device && isAudible(sounding)) {
            const bool isTone = sounding.kind == Sounding::Kind::loop;
            heard = {isTone ? "tone" : "beep", device->id, device->volume().value_or(1.0F)};
        }
    }
    return heard;
}

} // namespace sentrel::simulation
