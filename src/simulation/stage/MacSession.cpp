#include "simulation/stage/MacSession.hpp"

#include "ui/Node.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::string_view passcodeField = "passcode";

/// Whether something stands in the first cover's field, as a row of dots shows to anybody.
bool holdsText(const simulation::SimulatedDisplays& displays)
{
    const auto covers = displays.covers();
    const auto node = covers.empty() ? std::nullopt : ui::find(covers.front().content, passcodeField);
    const auto* const field = node ? ui::elementOf<ui::SecureField>(*node->view) : nullptr;
    return field != nullptr && !field->text.value.empty();
}

} // namespace

bool storePasscode(UnlockPasscodeStore& store, std::string_view passcode)
{
    const auto record = store.makeRecord(bytesOf(passcode), store.makeSalt(), UnlockPasscodeStore::currentIterations);
    return record && store.save(record->view());
}

MacSession::MacSession(const simulation::MacDescription& description, std::filesystem::path disk,
                       std::filesystem::path resources, std::uint64_t seed, Date date)
    : serverClock_(hardware_, date),
      cloudServer_(disk / "iCloud", serverClock_, log_),
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
    log_.observe([this](const simulation::Event& event) {
        followSound(event);
        if (event.name == "login" && event.text("answer") != "succeed") {
            isRelaunching_ = false;
        }
    });
    phone_.onNotification([this](const auto& shown) {
        log_.note("phone.notified", {{"text", std::string_view{shown.text}}, {"id", std::string_view{shown.alertID}}});
    });
}

MacSession::~MacSession()
{
    endProcess();
}

void MacSession::launch()
{
    isRelaunching_ = false;
    if (app_ != nullptr) {
        return;
    }
    log_.note("launched", {});
    mac_.application.start([this] { processHasEnded(); });
    app_ = std::make_unique<SentrelApp>(mac_.startProcess());
    onMain([this](SentrelApp&) { mac_.application.finishLaunching(); });
}

void MacSession::crash()
{
    if (app_ == nullptr) {
        return;
    }
    log_.note("crashed", {});
    endProcess();
}

void MacSession::quit()
{
    onMain([this](SentrelApp&) { mac_.application.terminate(); });
}

void MacSession::relaunch()
{
    isRelaunching_ = true;
    if (app_ == nullptr) {
        return launch();
    }
    quit();
}

/// A process ends in the middle of its last call. It is taken apart a turn later, and does nothing until then.
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
    sound_.reset();
}

void MacSession::sleep()
{
    log_.note("slept", {});
    isAsleep_ = true;
    process_.setAsleep(true);
    mac_.setAsleep(true);
}

void MacSession::wake()
{
    log_.note("woke", {});
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
    // A lid that shuts darkens its screen.
    sleepScreens();
}

void MacSession::sleepScreens()
{
    mac_.workspace.post("NSWorkspaceScreensDidSleepNotification");
    clock_.runReady();
}

void MacSession::changeSettings(const std::function<void(AlarmSettings&)>& change)
{
    onMain([&change](SentrelApp& app) {
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
    onMain([this, passcode](SentrelApp& app) {
        log_.note("passcode.set", {{"saved", storePasscode(app.passcodes(), passcode)}});
    });
}

void MacSession::typePasscode(std::string_view passcode)
{
    onMain([this, passcode](SentrelApp&) {
        simulation::SimulatedDisplays& displays = mac_.displays;
        if (displays.click(0, passcodeField) != ui::Interaction::done) {
            log_.note("typed.nowhere", {});
            return;
        }
        while (holdsText(displays) && displays.pressKey(ui::Key::deleteKey) == ui::Interaction::done) {
        }
        if (!displays.type(passcode) || displays.pressKey(ui::Key::returnKey) != ui::Interaction::done) {
            log_.note("typed.nowhere", {});
        }
    });
}

void MacSession::commandByPhone(const simulation::CompanionPhone::Command& command)
{
    try {
        const auto macs = phone_.macs();
        if (macs.empty()) {
            log_.note("phone.noMac", {});
            return;
        }
        const std::int64_t sequence = phone_.send(macs.front().deviceID, command);
        log_.note("phone.command", {{"sequence", sequence}, {"arm", command.arm}});
    } catch (const ports::CloudError& error) {
        log_.note("phone.refused", {{"why", std::string_view{error.description}}});
    }
}

void MacSession::onMain(const std::function<void(SentrelApp&)>& function)
{
    if (app_ == nullptr) {
        return;
    }
    post(process_.mainExecutor(), [this, function] { function(*app_); });
    clock_.runReady();
}

void MacSession::followSound(const simulation::Event& event)
{
    if (event.name == "alarm.stopped") {
        sound_.reset();
    } else if (event.name == "alarm.started") {
        AlarmSound sound;
        sound.mode = event.text("mode");
        if (const auto* const value = event.find("device");
            value != nullptr && std::holds_alternative<std::int64_t>(*value)) {
            sound.device = std::get<std::int64_t>(*value);
        }
        if (const auto* const value = event.find("volume");
            value != nullptr && std::holds_alternative<double>(*value)) {
            sound.volume = std::get<double>(*value);
        }
        sound_ = std::move(sound);
    }
}

} // namespace sentrel::simulation
