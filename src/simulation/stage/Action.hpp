#pragma once

#include "foundation/Json.hpp"
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

/// What can be done without saying more.
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
    refresh, ///< of the list of alerts
};

/// The power sources change to this.
struct SetPower {
    simulation::MacDescription::Power power;
};

/// The accelerometer delivers one reading, in g.
struct MoveMachine {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// The accelerometer delivers a recording from now on, each sample at its time.
struct PlayRecording {
    simulation::MotionRecording recording;
    std::string name; ///< as the scenario names the file
};

/// The accelerometer begins or ends to deliver a machine at rest.
struct RestMachine {
    bool isResting = true;
};

/// Settings change: an object with fields of `AlarmSettings`, each of its type, in the order of the file.
struct ChangeSettings {
    Json fields;
};

/// Somebody sets a device's volume, mute or both.
struct SetVolume {
    std::uint32_t device = 0;
    std::optional<double> value; ///< 0 to 1
    std::optional<bool> muted;
};

/// Somebody chooses another output; none: the system loses its default output.
struct SetDefaultOutput {
    std::optional<std::uint32_t> device;
};

/// A device is gone.
struct RemoveAudioDevice {
    std::uint32_t device = 0;
};

/// The owner uses the Music app.
struct UseMusic {
    enum class Use { play, pause, quit };
    Use use = Use::play;
};

/// A device of the simulated MacBook refuses or fails from now on, or is healed. Names are checked by whoever has the
/// devices.
struct FailPort {
    struct Fault {
        std::string name;
        int times = -1; ///< negative: until healed
    };
    std::string port;
    std::vector<Fault> faults; ///< none: the port is healed
};

/// Several ports at once.
struct FailPorts {
    std::vector<FailPort> ports;
};

/// The cameras, what they see and whether they may be used.
struct ChangeCamera {
    simulation::CameraChange change;
    std::string photoName; ///< as the scenario names the file; empty when it names none
};

/// How the keychains answer from now on.
struct ChangeKeychain {
    using Access = simulation::SimulatedKeychain::Access;
    std::optional<Access> dataProtection;
    std::optional<Access> legacy;
    std::optional<FailPort> fail; ///< of the port "keychain"
};

/// How the system's login panel is answered from now on.
struct AnswerLogin {
    simulation::LoginAnswer answer = simulation::LoginAnswer::succeed;
};

/// The owner sets the unlock passcode.
struct SetPasscode {
    std::string passcode;
};

/// Somebody types a passcode into the first cover's field and presses return.
struct TypePasscode {
    std::string passcode;
};

/// Displays are connected or disconnected until there are this many.
struct SetDisplays {
    std::size_t count = 1;
};

/// The iCloud account, the cloud and the network.
struct ChangeCloud {
    simulation::CloudChange change;
};

/// The owner's phone sends this Mac a command.
struct UsePhone {
    simulation::CompanionPhone::Command command;
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
                            AnswerSavePanel, ChangeCloud, UsePhone, DeleteAlerts>;

} // namespace sentrel::simulation
