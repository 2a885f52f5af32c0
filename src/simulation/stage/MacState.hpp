#pragma once

#include "alerts/StoredAlert.hpp"
#include "foundation/Bytes.hpp"
#include "foundation/Json.hpp"
#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/mac/MacDescription.hpp"
#include "simulation/mac/camera/SimulatedCamera.hpp"
#include "simulation/mac/display/SimulatedAlerts.hpp"
#include "simulation/mac/display/SimulatedDisplays.hpp"
#include "simulation/mac/display/SimulatedStatusBar.hpp"
#include "simulation/mac/music/SimulatedMusic.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <filesystem>

namespace sentrel::simulation {

class MacSession;
class SimulatedMac;

/// The state of the Mac as its devices show it, independently of the product: the speaker, the disk, the displays, the
/// menu bar, the server and the phone. For expectations and for the page. Calls no port of the product, so that a fault
/// of one neither strikes a reader nor is used up by it. Each object reads the disk at most once.
class MacState {
public:
    /// The phone's screen.
    struct Phone {
        std::vector<CompanionPhone::Alert> alerts;               ///< newest first
        std::vector<CompanionPhone::Notification> notifications; ///< oldest first
        std::vector<CompanionPhone::Mac> macs;
    };

    using SeenWindow = SimulatedDisplays::SeenWindow;

    explicit MacState(MacSession& session);

    [[nodiscard]] MacDescription::Power power() const;
    [[nodiscard]] MacDescription::Lid lid() const;
    [[nodiscard]] MacDescription::Accelerometer accelerometer() const;
    [[nodiscard]] SimulatedMusic::Playback music() const;
    [[nodiscard]] bool isCameraRunning() const;
    [[nodiscard]] CameraView cameraView() const;

    /// The product's item in the menu bar, even while a lock screen covers it; none if the product made none.
    [[nodiscard]] std::optional<SimulatedStatusBar::Item> menuBarItem() const;

    /// Whether the item in the menu bar shows the product as armed.
    [[nodiscard]] bool isArmed() const;

    /// Whether the menu offers to stop an alarm.
    [[nodiscard]] bool isAlarmActive() const;

    /// The visible texts of the open menu; none while it is closed.
    [[nodiscard]] std::optional<std::vector<std::string>> menu() const;

    /// The displays, the built-in one first.
    [[nodiscard]] std::vector<ports::Screen> displays() const;

    /// The visible windows below the lock screen, the one in front first.
    [[nodiscard]] std::vector<SeenWindow> windows() const;

    /// The windows of the lock screen; none while it is hidden.
    [[nodiscard]] std::vector<SeenWindow> covers() const;

    /// The open notice of the product in a panel of its own.
    [[nodiscard]] std::optional<SimulatedAlerts::Shown> systemAlert() const;

    /// The open questions and notices, in windows and in panels of their own.
    [[nodiscard]] std::vector<std::string> dialogs() const;

    /// {visible, size, texts} of a window; one that doesn't exist is not visible.
    [[nodiscard]] Json window(std::string_view identifier) const;

    /// The message of the lock screen; none if there is none.
    [[nodiscard]] std::optional<std::string> coverMessage() const;

    /// {mode, device, volume} of the audible alarm; null if nothing is heard.
    [[nodiscard]] Json sound() const;

    /// The audio devices, and the number of the default output.
    [[nodiscard]] std::vector<AudioDevice> audioDevices() const;
    [[nodiscard]] std::optional<ports::AudioObjectId> defaultOutput() const;

    /// The alerts on the disk, oldest first.
    [[nodiscard]] const std::vector<StoredAlert>& alerts() const;

    /// The content of an alert's photo file; none without a photo or if the file is missing.
    [[nodiscard]] std::optional<Bytes> photoOf(const StoredAlert& alert) const;

    /// {width, height, brightness} of the last alert's photo, or null. A file that is no image has no size.
    [[nodiscard]] Json lastPhoto() const;

    /// The settings on the disk.
    [[nodiscard]] Json settings() const;

    /// Number of cloud deletions that are still owed, on the disk.
    [[nodiscard]] std::size_t pendingDeletions() const;

    /// Number of alerts in the signed-in account, read from the server.
    [[nodiscard]] std::uint64_t cloudAlerts() const;

    /// None if the server doesn't let the phone read.
    [[nodiscard]] std::optional<Phone> phone() const;

private:
    MacSession& session_;
    SimulatedMac& mac_;
    mutable std::optional<std::vector<StoredAlert>> alerts_; // none: not read yet
};

/// All state that scenarios can expect, by the names that they use. Taken from `MacState` where possible. Only state
/// that no device shows at all times comes from the product: its notices, the last trigger, the list of alerts, its
/// view of iCloud, whether the lock screen refuses passcodes, and whether quitting is being decided.
[[nodiscard]] Json stateOf(MacSession& session);

/// The product's folder of alerts, repeated here so that the disk is read independently of the product.
[[nodiscard]] std::filesystem::path alertsFolder(SimulatedMac& mac);

} // namespace sentrel::simulation
