#pragma once

#include "ports/Alerts.hpp"
#include "ports/Application.hpp"
#include "ports/ApplicationActivation.hpp"
#include "ports/ApplicationNotifications.hpp"
#include "ports/AudioEngine.hpp"
#include "ports/AudioHardware.hpp"
#include "ports/Automation.hpp"
#include "ports/Calendar.hpp"
#include "ports/Camera.hpp"
#include "ports/CloudAccount.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/Cryptography.hpp"
#include "ports/DeviceRegistry.hpp"
#include "ports/HidEventSystem.hpp"
#include "ports/HostInfo.hpp"
#include "ports/ImageCodec.hpp"
#include "ports/Journal.hpp"
#include "ports/Keychain.hpp"
#include "ports/Language.hpp"
#include "ports/LoginAuthentication.hpp"
#include "ports/LoginItem.hpp"
#include "ports/NetworkPath.hpp"
#include "ports/PowerAssertions.hpp"
#include "ports/PowerSources.hpp"
#include "ports/PreviewPanel.hpp"
#include "ports/Random.hpp"
#include "ports/RemoteNotifications.hpp"
#include "ports/SavePanels.hpp"
#include "ports/StatusBar.hpp"
#include "ports/UserDefaults.hpp"
#include "ports/WallClock.hpp"
#include "ports/Windows.hpp"
#include "ports/WorkspaceNotifications.hpp"
#include "runtime/Scheduler.hpp"

#include <memory>
#include <string>

// Makes the adapter of each port over Apple's frameworks. Main thread.

namespace sentrel::mac {

/// Main queue, concurrent queues, serial queues and the continuous clock.
[[nodiscard]] std::unique_ptr<Scheduler> makeScheduler();

// The computer, its user and this application among the others
[[nodiscard]] std::unique_ptr<ports::WallClock> makeWallClock();
[[nodiscard]] std::unique_ptr<ports::HostInfo> makeHostInfo();
[[nodiscard]] std::unique_ptr<ports::Language> makeLanguage();
[[nodiscard]] std::unique_ptr<ports::Calendar> makeCalendar();
[[nodiscard]] std::unique_ptr<ports::LoginItem> makeLoginItem();
[[nodiscard]] std::unique_ptr<ports::ApplicationActivation> makeApplicationActivation();
[[nodiscard]] std::unique_ptr<ports::ApplicationNotifications> makeApplicationNotifications();
[[nodiscard]] std::unique_ptr<ports::WorkspaceNotifications> makeWorkspaceNotifications();
[[nodiscard]] std::unique_ptr<ports::UserDefaults> makeUserDefaults();
[[nodiscard]] std::unique_ptr<ports::Journal> makeJournal();

// Power, lid, motion, sound and camera
[[nodiscard]] std::unique_ptr<ports::PowerSources> makePowerSources();
[[nodiscard]] std::unique_ptr<ports::PowerAssertions> makePowerAssertions();
[[nodiscard]] std::unique_ptr<ports::DeviceRegistry> makeDeviceRegistry();
[[nodiscard]] std::unique_ptr<ports::HidEventSystem> makeHidEventSystem();
[[nodiscard]] std::unique_ptr<ports::AudioHardware> makeAudioHardware();
[[nodiscard]] std::unique_ptr<ports::AudioEngines> makeAudioEngines();
[[nodiscard]] std::unique_ptr<ports::SystemBeep> makeSystemBeep();
[[nodiscard]] std::unique_ptr<ports::Camera> makeCamera();
[[nodiscard]] std::unique_ptr<ports::ImageCodec> makeImageCodec();

// Other applications, and what pauses them
[[nodiscard]] std::unique_ptr<ports::RunningApplications> makeRunningApplications();
[[nodiscard]] std::unique_ptr<ports::Automation> makeAutomation();
[[nodiscard]] std::unique_ptr<ports::EventPosting> makeEventPosting();

// Keychain, login, keys and random numbers
[[nodiscard]] std::unique_ptr<ports::Cryptography> makeCryptography();
[[nodiscard]] std::unique_ptr<ports::Random> makeRandom();
[[nodiscard]] std::unique_ptr<ports::GeneralRandom> makeGeneralRandom();
[[nodiscard]] std::unique_ptr<ports::Keychain> makeKeychain();
[[nodiscard]] std::unique_ptr<ports::LoginAuthentication> makeLoginAuthentication();

// The container in iCloud of this identifier, and the way to it. Cursors passed in must come from the same database.
[[nodiscard]] std::unique_ptr<ports::CloudAccount> makeCloudAccount(std::string container);
[[nodiscard]] std::unique_ptr<ports::CloudDatabase> makeCloudDatabase(std::string container);
[[nodiscard]] std::unique_ptr<ports::NetworkPaths> makeNetworkPaths();

// Windows, panels and the menu bar
[[nodiscard]] std::unique_ptr<ports::Windows> makeWindows();
[[nodiscard]] std::unique_ptr<ports::StatusBar> makeStatusBar();
[[nodiscard]] std::unique_ptr<ports::Alerts> makeAlerts();
[[nodiscard]] std::unique_ptr<ports::SavePanels> makeSavePanels();

/// The ports that the shared application's only AppKit delegate serves.
struct ApplicationPorts {
    std::unique_ptr<ports::Application> application;
    std::unique_ptr<ports::RemoteNotifications> remoteNotifications;
    std::unique_ptr<ports::PreviewPanel> previewPanel;
};

[[nodiscard]] ApplicationPorts makeApplication();

/// Serves events until the application ends; never returns. Call after `Application::setDelegate`.
void runApplication();

} // namespace sentrel::mac
