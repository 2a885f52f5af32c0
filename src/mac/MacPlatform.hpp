#pragma once

#include "mac/Adapters.hpp"
#include "ports/Platform.hpp"
#include "posix/PosixFileSystem.hpp"
#include "posix/PosixStandardOutput.hpp"

#include <utility>
#include <vector>

namespace sentrel::mac {

/// The Mac as the product sees it. Made and destroyed on the main thread; it outlives the product.
class MacPlatform {
public:
    /// Takes the identifier of the product's iCloud container.
    explicit MacPlatform(const std::string& cloudContainer)
        : ports_{
              .scheduler = *scheduler_,
              .wallClock = keep(makeWallClock()),
              .random = keep(makeRandom()),
              .host = keep(makeHostInfo()),
              .files = files_,
              .defaults = keep(makeUserDefaults()),
              .language = keep(makeLanguage()),
              .calendar = keep(makeCalendar()),
              .journal = keep(makeJournal()),
              .standardOutput = standardOutput_,
              .powerSources = keep(makePowerSources()),
              .powerAssertions = keep(makePowerAssertions()),
              .deviceRegistry = keep(makeDeviceRegistry()),
              .workspaceNotifications = keep(makeWorkspaceNotifications()),
              .hidEvents = keep(makeHidEventSystem()),
              .audioHardware = keep(makeAudioHardware()),
              .audioEngines = keep(makeAudioEngines()),
              .systemBeep = keep(makeSystemBeep()),
              .runningApplications = keep(makeRunningApplications()),
              .automation = keep(makeAutomation()),
              .eventPosting = keep(makeEventPosting()),
              .camera = keep(makeCamera()),
              .imageCodec = keep(makeImageCodec()),
              .keychain = keep(makeKeychain()),
              .cryptography = keep(makeCryptography()),
              .generalRandom = keep(makeGeneralRandom()),
              .loginAuthentication = keep(makeLoginAuthentication()),
              .alerts = keep(makeAlerts()),
              .applicationActivation = keep(makeApplicationActivation()),
              .applicationNotifications = keep(makeApplicationNotifications()),
              .windows = keep(makeWindows()),
              .cloudAccount = keep(makeCloudAccount(cloudContainer)),
              .cloudDatabase = keep(makeCloudDatabase(cloudContainer)),
              .networkPaths = keep(makeNetworkPaths()),
              .remoteNotifications = *application_.remoteNotifications,
              .application = *application_.application,
              .statusBar = keep(makeStatusBar()),
              .savePanels = keep(makeSavePanels()),
              .previewPanel = *application_.previewPanel,
              .loginItem = keep(makeLoginItem()),
          }
    {
    }
    MacPlatform(const MacPlatform&) = delete;

    [[nodiscard]] ports::Platform& ports() { return ports_; }

private:
    template <class Port> Port& keep(std::unique_ptr<Port> adapter)
    {
        Port& port = *adapter;
        adapters_.push_back(std::move(adapter));
        return port;
    }

    const std::unique_ptr<Scheduler> scheduler_ = makeScheduler();
    posix::PosixFileSystem files_;
    posix::PosixStandardOutput standardOutput_;
    std::vector<std::shared_ptr<void>> adapters_;
    const ApplicationPorts application_ = makeApplication();
    ports::Platform ports_;
};

} // namespace sentrel::mac
