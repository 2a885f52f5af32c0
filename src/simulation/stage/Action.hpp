#pragma once

#include "foundation/Json.hpp"
#include "simulation/PlannedFaults.hpp"
#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/mac/CloudChange.hpp"
#include "simulation/mac/MacDescription.hpp"
#include "simulation/mac/camera/CameraChange.hpp"
#include "simulation/mac/motion/MotionRecording.hpp"
#include "simulation/mac/security/SimulatedKeychain.hpp"
#include "simulation/mac/security/SimulatedLogin.hpp"
#include "simulation/stage/ShellAction.hpp"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace sentrel::simulation {

/// Actions without parameters.
enum class PlainAction {
    arm,
    disarm,
    stopAlarm,
    unplug,
    plugIn,
    closeLid,
    openLid,
    screensSleep,
    crash, ///< the process's memory is lost, its files stay
    relaunch,
    sleep,
    wake,
    quit,
    refresh, ///< refreshes the list of alerts
};

/// Changes the power sources.
struct SetPower {
    MacDescription::Power power;
};

/// The accelerometer delivers one reading, in g.
struct MoveMachine {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// The accelerometer delivers a recording from now on, each sample at its time.
struct PlayRecording {
    MotionRecording recording;
    std::string name; ///< the file's name in the scenario
};

/// The accelerometer begins or stops delivering a machine at rest.
struct RestMachine {
    bool isResting = true;
};

/// Changes settings: an object with fields of `AlarmSettings`, each of its type, in the order of the file.
struct ChangeSettings {
    Json fields;
};

/// A person sets a device's volume, mute or both.
struct SetVolume {
    std::uint32_t device = 0;
    std::optional<double> value; ///< 0 to 1
    std::optional<bool> muted;
};

/// A person chooses another output; none: the system loses its default output.
struct SetDefaultOutput {
    std::optional<std::uint32_t> device;
};

/// Unplugs a device.
struct RemoveAudioDevice {
    std::uint32_t device = 0;
};

/// The owner uses the Music app.
struct UseMusic {
    enum class Use { play, pause, quit };
    Use use = Use::play;
};

/// A device of the simulated MacBook fails from now on, or is healed. Names are checked later, against the devices.
struct FailPort {
    struct Fault {
        std::string name;
        int times = -1; ///< negative: until healed
    };
    std::string port;
    std::vector<Fault> faults; ///< empty heals the port
};

/// Several ports at once.
struct FailPorts {
    std::vector<FailPort> ports;
};

/// Calls of the product meet faults from now on; none heals the calls that were not struck yet.
struct PlanFault {
    std::optional<CallFault> fault;
};

/// The Mac's wall clock is set ahead, or back.
struct MoveClock {
    double seconds = 0.0;
};

/// Changes the cameras, their view and the permission to use them.
struct ChangeCamera {
    CameraChange change;
    std::string photoName; ///< the file's name in the scenario; empty if none is given
};

/// Sets the keychains' answers from now on.
struct ChangeKeychain {
    using Access = SimulatedKeychain::Access;
    std::optional<Access> dataProtection;
    std::optional<Access> legacy;
    std::optional<FailPort> fail; ///< faults of the port "keychain"
};

/// Sets the answer to the system's login panel from now on.
struct AnswerLogin {
    LoginAnswer answer = LoginAnswer::succeed;
};

/// The owner sets the unlock passcode.
struct SetPasscode {
    std::string passcode;
};

/// A person types a passcode into the first cover's field and presses return.
struct TypePasscode {
    std::string passcode;
};

/// Displays are connected or disconnected until there are this many.
struct SetDisplays {
    std::size_t count = 1;
};

/// Changes the iCloud account, the cloud and the network.
struct ChangeCloud {
    CloudChange change;
};

/// The owner's phone sends this Mac a command.
struct UsePhone {
    CompanionPhone::Command command;
};

/// The owner deletes alerts from the list.
struct DeleteAlerts {
    enum class Which { all, oldest, newest };
    Which which = Which::all;
};

using Action = std::variant<PlainAction, SetPower, MoveMachine, PlayRecording, RestMachine, ChangeSettings, SetVolume,
                            SetDefaultOutput, RemoveAudioDevice, UseMusic, FailPorts, ChangeCamera, ChangeKeychain,
                            AnswerLogin, SetPasscode, TypePasscode, SetDisplays, UseMenu, ClickOn, TypeText, PressKey,
                            MoveSlider, SelectRows, OpenWindow, CloseWindow, DragWindow, AnswerLoginItem,
                            AnswerSavePanel, PlanFault, MoveClock, ChangeCloud, UsePhone, DeleteAlerts>;

} // namespace sentrel::simulation
