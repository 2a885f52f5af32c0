#pragma once

#include "platform/Platform.hpp"
#include "platform/macos/DispatchScheduler.hpp"
#include "platform/macos/MacAlerts.hpp"
#include "platform/macos/MacApplication.hpp"
#include "platform/macos/MacApplicationActivation.hpp"
#include "platform/macos/MacApplicationNotifications.hpp"
#include "platform/macos/MacAudioEngines.hpp"
#include "platform/macos/MacAudioHardware.hpp"
#include "platform/macos/MacAutomation.hpp"
#include "platform/macos/MacCalendar.hpp"
#include "platform/macos/MacCamera.hpp"
#include "platform/macos/MacCloudAccount.hpp"
#include "platform/macos/MacCloudDatabase.hpp"
#include "platform/macos/MacCryptography.hpp"
#include "platform/macos/MacDeviceRegistry.hpp"
#include "platform/macos/MacHidEventSystem.hpp"
#include "platform/macos/MacHostInfo.hpp"
#include "platform/macos/MacImageCodec.hpp"
#include "platform/macos/MacJournal.hpp"
#include "platform/macos/MacKeychain.hpp"
#include "platform/macos/MacLanguage.hpp"
#include "platform/macos/MacLoginAuthentication.hpp"
#include "platform/macos/MacLoginItem.hpp"
#include "platform/macos/MacNetworkPaths.hpp"
#include "platform/macos/MacPowerAssertions.hpp"
#include "platform/macos/MacPowerSources.hpp"
#include "platform/macos/MacPreviewPanel.hpp"
#include "platform/macos/MacRandom.hpp"
#include "platform/macos/MacRemoteNotifications.hpp"
#include "platform/macos/MacSavePanels.hpp"
#include "platform/macos/MacStatusBar.hpp"
#include "platform/macos/MacSystemBeep.hpp"
#include "platform/macos/MacUserDefaults.hpp"
#include "platform/macos/MacWallClock.hpp"
#include "platform/macos/MacWindows.hpp"
#include "platform/macos/MacWorkspaceNotifications.hpp"
#include "platform/posix/PosixFileSystem.hpp"
#include "platform/posix/PosixStandardOutput.hpp"

namespace sentrel::macos {

/// The Mac as the product sees it. Made and destroyed on the main thread; it outlives the product.
class MacPlatform {
public:
    /// The container in iCloud is the product's, by its identifier.
    explicit MacPlatform(const std::string& cloudContainer)
        : cloudAccount_(cloudContainer), cloudDatabase_(cloudContainer)
    {
    }
    MacPlatform(const MacPlatform&) = delete;
    MacPlatform& operator=(const MacPlatform&) = delete;

    [[nodiscard]] platform::Platform& ports() { return ports_; }

    /// To be run.
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
    platform::Platform ports_{
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

} // namespace sentrel::macos
