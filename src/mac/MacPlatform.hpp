#pragma once

#include "mac/application/MacApplication.hpp"
#include "mac/application/System.hpp"
#include "mac/camera/Camera.hpp"
#include "mac/cloud/Cloud.hpp"
#include "mac/cloud/MacRemoteNotifications.hpp"
#include "mac/files/Files.hpp"
#include "mac/motion/Motion.hpp"
#include "mac/music/Music.hpp"
#include "mac/power/Power.hpp"
#include "mac/scheduling/DispatchScheduler.hpp"
#include "mac/security/Security.hpp"
#include "mac/sound/Sound.hpp"
#include "mac/windows/MacPreviewPanel.hpp"
#include "mac/windows/Windows.hpp"
#include "ports/Platform.hpp"
#include "posix/PosixFileSystem.hpp"
#include "posix/PosixStandardOutput.hpp"

namespace sentrel::mac {

/// The Mac as the product sees it. Made and destroyed on the main thread; it outlives the product.
class MacPlatform {
public:
    /// Takes the identifier of the product's iCloud container.
    explicit MacPlatform(const std::string& cloudContainer)
        : cloudAccount_(makeCloudAccount(cloudContainer)), cloudDatabase_(makeCloudDatabase(cloudContainer))
    {
    }
    MacPlatform(const MacPlatform&) = delete;
    MacPlatform& operator=(const MacPlatform&) = delete;

    [[nodiscard]] ports::Platform& ports() { return ports_; }

    /// The caller runs it.
    [[nodiscard]] MacApplication& application() { return application_; }

private:
    DispatchScheduler scheduler_;
    const std::unique_ptr<ports::WallClock> wallClock_ = makeWallClock();
    const std::unique_ptr<ports::Random> random_ = makeRandom();
    const std::unique_ptr<ports::GeneralRandom> generalRandom_ = makeGeneralRandom();
    const std::unique_ptr<ports::HostInfo> host_ = makeHostInfo();
    posix::PosixFileSystem files_;
    const std::unique_ptr<ports::UserDefaults> defaults_ = makeUserDefaults();
    const std::unique_ptr<ports::Language> language_ = makeLanguage();
    const std::unique_ptr<ports::Calendar> calendar_ = makeCalendar();
    const std::unique_ptr<ports::Journal> journal_ = makeJournal();
    posix::PosixStandardOutput standardOutput_;
    const std::unique_ptr<ports::PowerSources> powerSources_ = makePowerSources();
    const std::unique_ptr<ports::PowerAssertions> powerAssertions_ = makePowerAssertions();
    const std::unique_ptr<ports::DeviceRegistry> deviceRegistry_ = makeDeviceRegistry();
    const std::unique_ptr<ports::WorkspaceNotifications> workspaceNotifications_ = makeWorkspaceNotifications();
    const std::unique_ptr<ports::HidEventSystem> hidEvents_ = makeHidEventSystem();
    const std::unique_ptr<ports::AudioHardware> audioHardware_ = makeAudioHardware();
    const std::unique_ptr<ports::AudioEngines> audioEngines_ = makeAudioEngines();
    const std::unique_ptr<ports::SystemBeep> systemBeep_ = makeSystemBeep();
    const std::unique_ptr<ports::RunningApplications> runningApplications_ = makeRunningApplications();
    const std::unique_ptr<ports::Automation> automation_ = makeAutomation();
    const std::unique_ptr<ports::EventPosting> eventPosting_ = makeEventPosting();
    const std::unique_ptr<ports::Camera> camera_ = makeCamera();
    const std::unique_ptr<ports::ImageCodec> imageCodec_ = makeImageCodec();
    const std::unique_ptr<ports::Keychain> keychain_ = makeKeychain();
    const std::unique_ptr<ports::Cryptography> cryptography_ = makeCryptography();
    const std::unique_ptr<ports::LoginAuthentication> loginAuthentication_ = makeLoginAuthentication();
    const std::unique_ptr<ports::Alerts> alerts_ = makeAlerts();
    const std::unique_ptr<ports::ApplicationActivation> applicationActivation_ = makeApplicationActivation();
    const std::unique_ptr<ports::ApplicationNotifications> applicationNotifications_ = makeApplicationNotifications();
    const std::unique_ptr<ports::Windows> windows_ = makeWindows();
    const std::unique_ptr<ports::CloudAccount> cloudAccount_;
    const std::unique_ptr<ports::CloudDatabase> cloudDatabase_;
    const std::unique_ptr<ports::NetworkPaths> networkPaths_ = makeNetworkPaths();
    MacRemoteNotifications remoteNotifications_;
    MacPreviewPanel previewPanel_;
    MacApplication application_{remoteNotifications_, previewPanel_};
    const std::unique_ptr<ports::StatusBar> statusBar_ = makeStatusBar();
    const std::unique_ptr<ports::SavePanels> savePanels_ = makeSavePanels();
    const std::unique_ptr<ports::LoginItem> loginItem_ = makeLoginItem();
    ports::Platform ports_{
        .scheduler = scheduler_,
        .wallClock = *wallClock_,
        .random = *random_,
        .host = *host_,
        .files = files_,
        .defaults = *defaults_,
        .language = *language_,
        .calendar = *calendar_,
        .journal = *journal_,
        .standardOutput = standardOutput_,
        .powerSources = *powerSources_,
        .powerAssertions = *powerAssertions_,
        .deviceRegistry = *deviceRegistry_,
        .workspaceNotifications = *workspaceNotifications_,
        .hidEvents = *hidEvents_,
        .audioHardware = *audioHardware_,
        .audioEngines = *audioEngines_,
        .systemBeep = *systemBeep_,
        .runningApplications = *runningApplications_,
        .automation = *automation_,
        .eventPosting = *eventPosting_,
        .camera = *camera_,
        .imageCodec = *imageCodec_,
        .keychain = *keychain_,
        .cryptography = *cryptography_,
        .generalRandom = *generalRandom_,
        .loginAuthentication = *loginAuthentication_,
        .alerts = *alerts_,
        .applicationActivation = *applicationActivation_,
        .applicationNotifications = *applicationNotifications_,
        .windows = *windows_,
        .cloudAccount = *cloudAccount_,
        .cloudDatabase = *cloudDatabase_,
        .networkPaths = *networkPaths_,
        .remoteNotifications = remoteNotifications_,
        .application = application_,
        .statusBar = *statusBar_,
        .savePanels = *savePanels_,
        .previewPanel = previewPanel_,
        .loginItem = *loginItem_,
    };
};

} // namespace sentrel::mac
