#include "simulation/mac/SimulatedMac.hpp"

#include "runtime/Sleep.hpp"

namespace sentrel::simulation {

class SimulatedMac::GatedJournal final : public ports::Journal {
public:
    GatedJournal(ports::Journal& journal, FaultSwitches& faults) : journal_(journal), faults_(faults) {}

private:
    void write(std::string_view event, std::initializer_list<Field> fields) override
    {
        faults_.call("note");
        journal_.passOn(event, fields);
    }

    ports::Journal& journal_;
    FaultSwitches& faults_;
};

class SimulatedMac::GatedWallClock final : public ports::WallClock {
public:
    GatedWallClock(ports::WallClock& clock, FaultSwitches& faults) : clock_(clock), faults_(faults) {}

    [[nodiscard]] Date now() override
    {
        faults_.call("now");
        return clock_.now();
    }

private:
    ports::WallClock& clock_;
    FaultSwitches& faults_;
};

SimulatedMac::SimulatedMac(const MacSurroundings& surroundings, const MacDescription& description)
    : calls_(surroundings.hanging),
      journal_(surroundings.journal),
      process_(surroundings.process),
      disk_(surroundings.disk),
      wallClock(surroundings.hardware, surroundings.date),
      random(surroundings.seed),
      host(disk_,
           {description.model, description.localizedName, description.bundleIdentifier, description.productName}),
      language(surroundings.resources, journal_, description.language),
      calendar(description.language, description.timeZone.value_or("UTC")),
      power(process_, journal_),
      assertions(journal_),
      lid(journal_),
      workspace(process_, journal_),
      accelerometer(surroundings.hardware, journal_, surroundings.seed),
      audio(journal_, description.audio, description.defaultOutput),
      speaker(surroundings.hardware, audio),
      audioEngines(speaker, audio),
      beep(speaker),
      music(journal_),
      input([this] { music.togglePlayback(); }),
      standardOutput(journal_),
      camera(surroundings.hardware, wallClock, [this](Date date) { return calendar.onClocks(date); }),
      keychain(files, disk_ / "Keychains" / "Keychain.json"),
      login(surroundings.hardware, journal_),
      alerts(surroundings.hardware, activation),
      displays(process_, journal_, activation, description.displays),
      application(journal_),
      savePanels(surroundings.hardware, disk_),
      previewPanel(journal_),
      loginItem(posixFiles_, journal_, disk_ / "Preferences" / "Login Items.json"),
      iCloud({
          .process = process_,
          .hardware = surroundings.hardware,
          .journal = journal_,
          .server = surroundings.cloudServer,
          .device = description.localizedName.value_or("Mac"),
          .assets = disk_ / "Caches" / "CloudKit",
          .seed = surroundings.seed,
      }),
      gatedJournal_(std::make_unique<GatedJournal>(journal_, journalFaults_)),
      gatedWallClock_(std::make_unique<GatedWallClock>(wallClock, wallClockFaults_))
{
    for (const auto& [port, switches] : faults()) {
        switches->connect(calls_, port);
    }
    // The menu closes when a window is given the keyboard.
    displays.onKeyWindow([this] { statusBar.closeMenu(); });
    iCloud.account.onChange([this] { displays.post("CKAccountChangedNotification"); });
    if (description.power == MacDescription::Power::unknown) {
        power.setUnknown();
    } else if (description.power == MacDescription::Power::battery) {
        power.setAC(false);
    }
    if (description.lid == MacDescription::Lid::absent) {
        lid.setAbsent();
    } else if (description.lid == MacDescription::Lid::closed) {
        lid.close();
    }
    accelerometer.setPresent(description.accelerometer != MacDescription::Accelerometer::absent);
    accelerometer.setResting(description.accelerometer == MacDescription::Accelerometer::resting);
    music.setPlayback(description.music);
    music.setConsent(description.automationConsent);
    apply(description.camera, camera);
    login.setAnswer(description.login);
    apply(description.iCloud, iCloud);
    tasks_.add(MainActor{surroundings.hardware}.spawn(announceDays()));
}

/// Announces each new day, one second after it has begun.
Async<void> SimulatedMac::announceDays()
{
    for (;;) {
        const Date now = wallClock.now();
        const Date end = calendar.interval(ports::CalendarUnit::day, now).end;
        co_await sleepFor(durationFromSeconds(end.secondsSince(now) + 1.0));
        displays.post("NSCalendarDayChangedNotification");
    }
}

SimulatedMac::~SimulatedMac() = default;

ports::Platform& SimulatedMac::startProcess()
{
    platform_.reset();
    defaults_.emplace(files, journal_, preferences(), host.bundleIdentifier().value_or("Sentrel"), &defaultsFaults_);
    platform_.emplace(ports::Platform{
        .scheduler = process_,
        .wallClock = *gatedWallClock_,
        .random = random,
        .host = host,
        .files = files,
        .defaults = *defaults_,
        .language = language,
        .calendar = calendar,
        .journal = *gatedJournal_,
        .standardOutput = standardOutput,
        .powerSources = power,
        .powerAssertions = assertions,
        .deviceRegistry = lid,
        .workspaceNotifications = workspace,
        .hidEvents = accelerometer,
        .audioHardware = audio,
        .audioEngines = audioEngines,
        .systemBeep = beep,
        .runningApplications = music,
        .automation = music,
        .eventPosting = input,
        .camera = camera,
        .imageCodec = imageCodec,
        .keychain = keychain,
        .cryptography = cryptography,
        .generalRandom = random,
        .loginAuthentication = login,
        .alerts = alerts,
        .applicationActivation = activation,
        .applicationNotifications = displays,
        .windows = displays,
        .cloudAccount = iCloud.account,
        .cloudDatabase = iCloud.database,
        .networkPaths = iCloud.network,
        .remoteNotifications = iCloud.notifications,
        .application = application,
        .statusBar = statusBar,
        .savePanels = savePanels,
        .previewPanel = previewPanel,
        .loginItem = loginItem,
    });
    return *platform_;
}

void SimulatedMac::endProcess()
{
    platform_.reset();
    defaults_.reset();
    assertions.dropAll();
    application.end();
    previewPanel.end();
    iCloud.notifications.endProcess();
}

void SimulatedMac::setAsleep(bool isAsleep)
{
    accelerometer.setAsleep(isAsleep);
    speaker.setAsleep(isAsleep);
}

std::vector<std::pair<std::string, FaultSwitches*>> SimulatedMac::faults()
{
    return {
        {"power-sources", &power.faults()},
        {"power-assertions", &assertions.faults()},
        {"lid", &lid.faults()},
        {"workspace", &workspace.faults()},
        {"accelerometer", &accelerometer.faults()},
        {"audio", &audio.faults()},
        {"audio-engine", &audioEngines.faults()},
        {"beep", &beep.faults()},
        {"music", &music.faults()},
        {"input", &input.faults()},
        {"host", &host.faults()},
        {"camera", &camera.faults()},
        {"displays", &displays.faults()},
        {"keychain", &keychain.faults()},
        {"login-item", &loginItem.faults()},
        {"files", &files.faults()},
        {"random", &random.faults()},
        {"user-defaults", &defaultsFaults_},
        {"journal", &journalFaults_},
        {"wall-clock", &wallClockFaults_},
        {"language", &language.faults()},
        {"calendar", &calendar.faults()},
        {"image-codec", &imageCodec.faults()},
        {"cryptography", &cryptography.faults()},
        {"standard-output", &standardOutput.faults()},
        {"login", &login.faults()},
        {"alerts", &alerts.faults()},
        {"activation", &activation.faults()},
        {"application", &application.faults()},
        {"status-bar", &statusBar.faults()},
        {"save-panels", &savePanels.faults()},
        {"preview-panel", &previewPanel.faults()},
        {"icloud", &iCloud.link.callFaults()},
        {"network", &iCloud.network.faults()},
        {"push", &iCloud.notifications.faults()},
    };
}

} // namespace sentrel::simulation
