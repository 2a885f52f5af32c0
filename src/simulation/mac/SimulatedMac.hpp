#pragma once

#include "ports/Platform.hpp"
#include "posix/PosixFileSystem.hpp"
#include "runtime/MainActor.hpp"
#include "simulation/PortCalls.hpp"
#include "simulation/icloud/SimulatedICloud.hpp"
#include "simulation/mac/MacDescription.hpp"
#include "simulation/mac/SimulatedHost.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "simulation/mac/camera/SimulatedCamera.hpp"
#include "simulation/mac/camera/TurboImageCodec.hpp"
#include "simulation/mac/display/SimulatedAlerts.hpp"
#include "simulation/mac/display/SimulatedApplication.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"
#include "simulation/mac/display/SimulatedDisplays.hpp"
#include "simulation/mac/display/SimulatedLoginItem.hpp"
#include "simulation/mac/display/SimulatedPreviewPanel.hpp"
#include "simulation/mac/display/SimulatedSavePanels.hpp"
#include "simulation/mac/display/SimulatedStatusBar.hpp"
#include "simulation/mac/display/SimulatedWorkspace.hpp"
#include "simulation/mac/files/DefaultsFile.hpp"
#include "simulation/mac/files/SimulatedFileSystem.hpp"
#include "simulation/mac/files/SimulatedStandardOutput.hpp"
#include "simulation/mac/language/IcuCalendar.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/mac/motion/SimulatedAccelerometer.hpp"
#include "simulation/mac/music/SimulatedInput.hpp"
#include "simulation/mac/music/SimulatedMusic.hpp"
#include "simulation/mac/power/SimulatedAssertions.hpp"
#include "simulation/mac/power/SimulatedLid.hpp"
#include "simulation/mac/power/SimulatedPower.hpp"
#include "simulation/mac/security/OpenSslCryptography.hpp"
#include "simulation/mac/security/SeededRandom.hpp"
#include "simulation/mac/security/SimulatedKeychain.hpp"
#include "simulation/mac/security/SimulatedLogin.hpp"
#include "simulation/mac/sound/SimulatedAudio.hpp"
#include "simulation/mac/sound/SimulatedAudioEngines.hpp"
#include "simulation/mac/sound/SimulatedBeep.hpp"
#include "simulation/mac/sound/Speaker.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// Everything around a simulated MacBook.
struct MacSurroundings {
    Scheduler& process;              ///< runs the product
    Scheduler& hardware;             ///< runs the devices
    ports::Journal& journal;         ///< receives all events
    std::filesystem::path disk;      ///< holds "Application Support", "Preferences" and "tmp"
    std::filesystem::path resources; ///< holds the localisation tables
    PrivateCloud& cloudServer;       ///< may be shared by other Macs and the phone
    std::uint64_t seed = 1;          ///< for noise and identifiers
    Date date{};                     ///< initial wall clock time
    HangingCalls* hanging = nullptr; ///< lets calls hang; null: they can't
};

/// The whole simulated MacBook: its devices, its files, and the ports through which one process of the product sees
/// them. The devices outlive the process. Any thread, except for `startProcess` and `endProcess`.
class SimulatedMac {
public:
    /// Passes on the devices' exceptions for a description that makes no sense.
    SimulatedMac(const MacSurroundings& surroundings, const MacDescription& description);
    ~SimulatedMac();
    SimulatedMac(const SimulatedMac&) = delete;

    /// The ports of a new process of the product, which reads the user defaults anew.
    [[nodiscard]] ports::Platform& startProcess();

    /// The process is gone: the system releases its power assertions.
    void endProcess();

    /// Tells the devices that the machine falls asleep or wakes.
    void setAsleep(bool isAsleep);

    /// The fault switches of all devices, by device name.
    [[nodiscard]] std::vector<std::pair<std::string, FaultSwitches*>> faults();

    [[nodiscard]] const std::filesystem::path& disk() const { return disk_; }
    [[nodiscard]] std::filesystem::path preferences() const { return disk_ / "Preferences"; }

    /// The gate of all calls of the product.
    [[nodiscard]] PortCalls& calls() { return calls_; }

private:
    class GatedJournal;
    class GatedWallClock;

    PortCalls calls_;
    ports::Journal& journal_;
    Scheduler& process_;
    const std::filesystem::path disk_;
    posix::PosixFileSystem posixFiles_;

public:
    SimulatedWallClock wallClock;
    SeededRandom random;
    SimulatedHost host;
    SimulatedFileSystem files{posixFiles_};
    IcuLanguage language;
    IcuCalendar calendar;
    SimulatedPower power;
    SimulatedAssertions assertions;
    SimulatedLid lid;
    SimulatedWorkspace workspace;
    SimulatedAccelerometer accelerometer;
    SimulatedAudio audio;
    Speaker speaker;
    SimulatedAudioEngines audioEngines;
    SimulatedBeep beep;
    SimulatedMusic music;
    SimulatedInput input;
    SimulatedStandardOutput standardOutput;
    SimulatedCamera camera;
    TurboImageCodec imageCodec;
    SimulatedKeychain keychain;
    OpenSslCryptography cryptography;
    SimulatedLogin login;
    SimulatedApplicationActivation activation;
    SimulatedAlerts alerts;
    SimulatedDisplays displays;
    SimulatedApplication application;
    SimulatedStatusBar statusBar;
    SimulatedSavePanels savePanels;
    SimulatedPreviewPanel previewPanel;
    SimulatedLoginItem loginItem;
    SimulatedICloud iCloud;

private:
    Async<void> announceDays();

    // For ports that devices use too: the product's calls have faults of their own.
    FaultSwitches defaultsFaults_{};
    FaultSwitches journalFaults_{};
    FaultSwitches wallClockFaults_{};
    std::unique_ptr<GatedJournal> gatedJournal_;
    std::unique_ptr<GatedWallClock> gatedWallClock_;
    std::optional<DefaultsFile> defaults_;
    std::optional<ports::Platform> platform_;
    TaskBag tasks_;
};

} // namespace sentrel::simulation
