#pragma once

#include "ports/Journal.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

/// The events that the simulated MacBook, its people and its server note; `core/Events.hpp` has the product's.
namespace sentrel::events {

// The process

struct Launched {
    static constexpr ports::EventNames names{"launched"};
};

struct Crashed {
    static constexpr ports::EventNames names{"crashed"};
};

/// An exception left the product's handling of an event; the frameworks drop it.
struct EventRaised {
    static constexpr ports::EventNames names{"event.raised", "port"};
    std::string_view port;
};

struct QuitAsked {
    static constexpr ports::EventNames names{"quit.asked"};
};

struct QuitCancelled {
    static constexpr ports::EventNames names{"quit.cancelled"};
};

struct Quit {
    static constexpr ports::EventNames names{"quit"};
};

struct ActivationPolicySet {
    static constexpr ports::EventNames names{"activation-policy", "policy"};
    std::int64_t policy = 0; ///< an `NSApplicationActivationPolicy`
};

struct Printed {
    static constexpr ports::EventNames names{"printed", "text"};
    std::string_view text;
};

// Power, lid and motion

struct Slept {
    static constexpr ports::EventNames names{"slept"};
};

struct Woke {
    static constexpr ports::EventNames names{"woke"};
};

struct PowerChanged {
    static constexpr ports::EventNames names{"power.changed", "state"};
    std::string_view state; ///< states of the power sources, or "unknown"
};

struct LidChanged {
    static constexpr ports::EventNames names{"lid.changed", "state"};
    std::string_view state;
};

struct AssertionTaken {
    static constexpr ports::EventNames names{"assertion.taken", "name"};
    std::string_view name;
};

struct AssertionReleased {
    static constexpr ports::EventNames names{"assertion.released", "name"};
    std::string_view name;
};

struct AccelerometerSample {
    static constexpr ports::EventNames names{"accelerometer.sample", "x", "y", "z"};
    double x = 0.0; ///< g
    double y = 0.0;
    double z = 0.0;
};

struct AccelerometerRecording {
    static constexpr ports::EventNames names{"accelerometer.recording", "samples", "seconds"};
    std::int64_t samples = 0;
    double seconds = 0.0;
};

// Sound

struct AudioDeviceAdded {
    static constexpr ports::EventNames names{"audio-device.added", "device", "name"};
    std::int64_t device = 0;
    std::string_view name;
};

struct AudioDeviceRemoved {
    static constexpr ports::EventNames names{"audio-device.removed", "device"};
    std::int64_t device = 0;
};

/// A person has changed the volume or the mute of a device.
struct VolumeChanged {
    static constexpr ports::EventNames names{"volume.changed", "device", "volume", "muted"};
    std::int64_t device = 0;
    double volume = 0.0; ///< 0 to 1
    bool muted = false;
};

struct DefaultOutputChanged {
    static constexpr ports::EventNames names{"default-output.changed", "device"};
    std::optional<std::int64_t> device;
};

/// The product says that its tone has started, and the speaker sounds.
struct AlarmHeard {
    static constexpr ports::EventNames names{"alarm.heard", "mode", "device", "volume"};
    std::string_view mode; ///< "tone" or "beep"
    std::int64_t device = 0;
    double volume = 0.0; ///< 0 to 1
};

/// The product says that its tone has started, but the speaker is silent.
struct AlarmUnheard {
    static constexpr ports::EventNames names{"alarm.unheard"};
};

struct MusicPlaying {
    static constexpr ports::EventNames names{"music.playing", "by"};
    std::string_view by; ///< "user", "key" or "script"
};

struct MusicPaused {
    static constexpr ports::EventNames names{"music.paused", "by"};
    std::string_view by; ///< "user", "key" or "script"
};

struct MusicQuit {
    static constexpr ports::EventNames names{"music.quit"};
};

struct ConsentAsked {
    static constexpr ports::EventNames names{"consent.asked", "application"};
    std::string_view application;
};

struct ConsentAnswered {
    static constexpr ports::EventNames names{"consent.answered", "granted"};
    bool granted = false;
};

// Displays and panels

struct DisplaysChanged {
    static constexpr ports::EventNames names{"displays.changed", "count"};
    std::int64_t count = 0;
};

struct WorkspaceNotification {
    static constexpr ports::EventNames names{"workspace.notification", "name"};
    std::string_view name;
};

struct PreviewShown {
    static constexpr ports::EventNames names{"preview.shown", "items"};
    std::int64_t items = 0;
};

struct PreviewClosed {
    static constexpr ports::EventNames names{"preview.closed"};
};

struct LoginItemChanged {
    static constexpr ports::EventNames names{"login-item", "status"};
    std::int64_t status = 0; ///< an `SMAppServiceStatus`
};

// Passcode and login

struct PasscodeSet {
    static constexpr ports::EventNames names{"passcode.set", "saved"};
    bool saved = false;
};

/// No lock screen took what a person typed.
struct TypedNowhere {
    static constexpr ports::EventNames names{"typed.nowhere"};
};

struct LoginAsked {
    static constexpr ports::EventNames names{"login", "reason", "answer"};
    std::string_view reason;
    std::string_view answer; ///< name of a `LoginAnswer`, or "invalidated"
};

// Files

struct DefaultsDamaged {
    static constexpr ports::EventNames names{"defaults.damaged", "file"};
    std::string_view file;
};

struct DefaultsWriteFailed {
    static constexpr ports::EventNames names{"defaults.writeFailed", "file", "error"};
    std::string_view file;
    std::int64_t error = 0; ///< an `errno`
};

struct LocalizationDamaged {
    static constexpr ports::EventNames names{"localization.damaged", "file", "line", "problem"};
    std::string_view file;
    std::int64_t line = 0;
    std::string_view problem;
};

// iCloud and the phone

struct CloudRequest {
    static constexpr ports::EventNames names{"cloud.request", "operation", "outcome"};
    std::string_view operation; ///< name of a `CloudOperation`
    std::string_view outcome;   ///< "ok", or the name of an error
};

/// An account's records can't be read; the file is put aside under that name, or is lost (no name).
struct CloudDamaged {
    static constexpr ports::EventNames names{"icloud.damaged", "account", "putAside"};
    std::string_view account;
    std::string_view putAside;
};

struct PhoneNotified {
    static constexpr ports::EventNames names{"phone.notified", "text", "id"};
    std::string_view text;
    std::string_view id; ///< of the alert
};

struct PhoneCommand {
    static constexpr ports::EventNames names{"phone.command", "sequence", "arm"};
    std::int64_t sequence = 0;
    bool arm = false;
};

struct PhoneFoundNoMac {
    static constexpr ports::EventNames names{"phone.noMac"};
};

struct PhoneRefused {
    static constexpr ports::EventNames names{"phone.refused", "why"};
    std::string_view why;
};

} // namespace sentrel::events
