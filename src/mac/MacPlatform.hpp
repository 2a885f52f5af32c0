#pragma once

#include "mac/application/MacApplication.hpp"
#include "mac/application/MacApplicationActivation.hpp"
#include "mac/application/MacApplicationNotifications.hpp"
#include "mac/application/MacCalendar.hpp"
#include "mac/application/MacHostInfo.hpp"
#include "mac/application/MacLanguage.hpp"
#include "mac/application/MacLoginItem.hpp"
#include "mac/application/MacWallClock.hpp"
#include "mac/application/MacWorkspaceNotifications.hpp"
#include "mac/camera/MacCamera.hpp"
#include "mac/camera/MacImageCodec.hpp"
#include "mac/cloud/MacCloudAccount.hpp"
#include "mac/cloud/MacCloudDatabase.hpp"
#include "mac/cloud/MacNetworkPaths.hpp"
#include "mac/cloud/MacRemoteNotifications.hpp"
#include "mac/files/MacJournal.hpp"
#include "mac/files/MacUserDefaults.hpp"
#include "mac/motion/MacHidEventSystem.hpp"
#include "mac/music/MacAutomation.hpp"
#include "mac/power/MacDeviceRegistry.hpp"
#include "mac/power/MacPowerAssertions.hpp"
#include "mac/power/MacPowerSources.hpp"
#include "mac/scheduling/DispatchScheduler.hpp"
#include "mac/security/MacCryptography.hpp"
#include "mac/security/MacKeychain.hpp"
#include "mac/security/MacLoginAuthentication.hpp"
#include "mac/security/MacRandom.hpp"
#include "mac/sound/MacAudioEngines.hpp"
#include "mac/sound/MacAudioHardware.hpp"
#include "mac/sound/MacSystemBeep.hpp"
#include "mac/windows/MacAlerts.hpp"
#include "mac/windows/MacPreviewPanel.hpp"
#include "mac/windows/MacSavePanels.hpp"
#include "mac/windows/MacStatusBar.hpp"
#include "mac/windows/MacWindows.hpp"
#include "ports/Platform.hpp"
#include "posix/PosixFileSystem.hpp"
#include "posix/PosixStandardOutput.hpp"

namespace sentrel::mac {

/// The Mac as the product sees it. Made and destroyed on the main thread; it outlives the product.
class MacPlatform {
public:
    /// Takes the identifier of the product's iCloud container.
    explicit MacPlatform(const std::string& cloudContainer)
        : cloudAccount_(cloudContainer), cloudDatabase_(cloudContainer)
    {
    }
    MacPlatform(const MacPlatform&) = delete;
    MacPlatform& operator=(const MacPlatform&) = delete;

    [[nodiscard]] ports::Platform& ports() { return ports_; }

    /// The caller runs it.
    [[nodiscard]] MacApplication& application() { return application_; }

private:
    DispatchScheduler scheduler_;
    MacWallClock wallClock_;
    MacRandom random_;
    MacHostInfo host_;
    posix::PosixFileSystem files_;
    MacUserDefaults defaults_;
    MacLanguage language_;
    MacCalendar calendar_;
    MacJournal journal_;
    posix::PosixStandardOutput standardOutput_;
    MacPowerSources powerSources_;
    MacPowerAssertions powerAssertions_;
    MacDeviceRegistry deviceRegistry_;
    MacWorkspaceNotifications workspaceNotifications_;
    MacHidEventSystem hidEvents_;
    MacAudioHardware audioHardware_;
    MacAudioEngines audioEngines_;
    MacSystemBeep systemBeep_;
    MacRunningApplications runningApplications_;
    MacAutomation automation_;
    MacEventPosting eventPosting_;
    MacCamera camera_;
    MacImageCodec imageCodec_;
    MacKeychain keychain_;
    MacCryptography cryptography_;
    MacLoginAuthentication loginAuthentication_;
    MacAlerts alerts_;
    MacApplicationActivation applicationActivation_;
    MacApplicationNotifications applicationNotifications_;
    MacWindows windows_;
    MacCloudAccount cloudAccount_;
    MacCloudDatabase cloudDatabase_;
    MacNetworkPaths networkPaths_;
    MacRemoteNotifications remoteNotifications_;
    MacPreviewPanel previewPanel_;
    MacApplication application_{remoteNotifications_, previewPanel_};
    MacStatusBar statusBar_;
    MacSavePanels savePanels_;
    MacLoginItem loginItem_;
    ports::Platform ports_{
        .scheduler = scheduler_,
        .wallClock = wallClock_,
        .random = random_,
        .host = host_,
        .files = files_,
        .defaults = defaults_,
        .language = language_,
        .calendar = calendar_,
        .journal = journal_,
        .standardOutput = standardOutput_,
        .powerSources = powerSources_,
        .powerAssertions = powerAssertions_,
        .deviceRegistry = deviceRegistry_,
        .workspaceNotifications = workspaceNotifications_,
        .hidEvents = hidEvents_,
        .audioHardware = audioHardware_,
        .audioEngines = audioEngines_,
        .systemBeep = systemBeep_,
        .runningApplications = runningApplications_,
        .automation = automation_,
        .eventPosting = eventPosting_,
        .camera = camera_,
        .imageCodec = imageCodec_,
        .keychain = keychain_,
        .cryptography = cryptography_,
        .generalRandom = random_,
        .loginAuthentication = loginAuthentication_,
        .alerts = alerts_,
        .applicationActivation = applicationActivation_,
        .applicationNotifications = applicationNotifications_,
        .windows = windows_,
        .cloudAccount = cloudAccount_,
        .cloudDatabase = cloudDatabase_,
        .networkPaths = networkPaths_,
        .remoteNotifications = remoteNotifications_,
        .application = application_,
        .statusBar = statusBar_,
        .savePanels = savePanels_,
        .previewPanel = previewPanel_,
        .loginItem = loginItem_,
    };
};

} // namespace sentrel::mac
