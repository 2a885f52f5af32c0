#pragma once

#include "platform/Platform.hpp"
#include "platform/posix/PosixFileSystem.hpp"
#include "platform/simulated/DefaultsFile.hpp"
#include "platform/simulated/IcuCalendar.hpp"
#include "platform/simulated/IcuLanguage.hpp"
#include "platform/simulated/MacDescription.hpp"
#include "platform/simulated/OpenSslCryptography.hpp"
#include "platform/simulated/PortCalls.hpp"
#include "platform/simulated/SeededRandom.hpp"
#include "platform/simulated/SimulatedAccelerometer.hpp"
#include "platform/simulated/SimulatedAlerts.hpp"
#include "platform/simulated/SimulatedApplication.hpp"
#include "platform/simulated/SimulatedApplicationActivation.hpp"
#include "platform/simulated/SimulatedAssertions.hpp"
#include "platform/simulated/SimulatedAudio.hpp"
#include "platform/simulated/SimulatedAudioEngines.hpp"
#include "platform/simulated/SimulatedBeep.hpp"
#include "platform/simulated/SimulatedCamera.hpp"
#include "platform/simulated/SimulatedDisplays.hpp"
#include "platform/simulated/SimulatedFileSystem.hpp"
#include "platform/simulated/SimulatedHost.hpp"
#include "platform/simulated/SimulatedInput.hpp"
#include "platform/simulated/SimulatedKeychain.hpp"
#include "platform/simulated/SimulatedLid.hpp"
#include "platform/simulated/SimulatedLogin.hpp"
#include "platform/simulated/SimulatedLoginItem.hpp"
#include "platform/simulated/SimulatedMusic.hpp"
#include "platform/simulated/SimulatedPower.hpp"
#include "platform/simulated/SimulatedPreviewPanel.hpp"
#include "platform/simulated/SimulatedSavePanels.hpp"
#include "platform/simulated/SimulatedStandardOutput.hpp"
#include "platform/simulated/SimulatedStatusBar.hpp"
#include "platform/simulated/SimulatedWallClock.hpp"
#include "platform/simulated/SimulatedWorkspace.hpp"
#include "platform/simulated/Speaker.hpp"
#include "platform/simulated/TurboImageCodec.hpp"
#include "platform/simulated/icloud/SimulatedICloud.hpp"
#include "runtime/MainActor.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulated {

/// Where a simulated MacBook stands.
struct MacSurroundings {
    Scheduler& process;              ///< runs the product
    Scheduler& hardware;             ///< runs the devices
    platform::Journal& journal;      ///< hears what happens
    std::filesystem::path disk;      ///< holds "Application Support", "Preferences" and "tmp"
    std::filesystem::path resources; ///< holds the localisation tables
    PrivateCloud& cloudServer;       ///< which other Macs and the phone may share
    std::uint64_t seed = 1;          ///< of noise and identifiers
    Date date{};                     ///< when it all begins
    HangingCalls* hanging = nullptr; ///< where calls may hang, if anywhere
};

/// The whole simulated MacBook: its devices, its files, and the ports through which one process of the product sees
/// them. The devices outlive the process. Any thread, but for `startProcess` and `endProcess`.
class SimulatedMac {
public:
    /// Throws what the devices throw about a description that makes no sense.
    SimulatedMac(const MacSurroundings& surroundings, const MacDescription& description);
    ~SimulatedMac();
    SimulatedMac(const SimulatedMac&) = delete;

    /// What a new process of the product gets to see: it reads the user defaults anew.
    [[nodiscard]] platform::Platform& startProcess();

    /// What the system does when the process is gone: it drops the process's assertions.
    void endProcess();

    /// The machine falls asleep or wakes: the devices' part of it.
    void setAsleep(bool isAsleep);

    /// Every device that can be made to fail, by name.
    [[nodiscard]] std::vector<std::pair<std::string, FaultSwitches*>> faults();

    [[nodiscard]] const std::filesystem::path& disk() const { return disk_; }
    [[nodiscard]] std::filesystem::path preferences() const { return disk_ / "Preferences"; }

    /// The gate of all calls of the product.
    [[nodiscard]] PortCalls& calls() { return calls_; }

private:
    class GatedJournal;
    class GatedWallClock;

    PortCalls calls_;
    platform::Journal& journal_;
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

    // Of ports that devices use as well, so that the product has a gate of its own.
    FaultSwitches defaultsFaults_{};
    FaultSwitches journalFaults_{};
    FaultSwitches wallClockFaults_{};
    std::unique_ptr<GatedJournal> gatedJournal_;
    std::unique_ptr<GatedWallClock> gatedWallClock_;
    std::optional<DefaultsFile> defaults_;
    std::optional<platform::Platform> platform_;
    TaskBag tasks_;
};

} // namespace sentrel::simulated
