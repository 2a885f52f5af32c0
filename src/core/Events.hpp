#pragma once

#include "ports/Journal.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

/// The events that the product notes in its journal. Names and fields are held: files of events are read by others.
namespace sentrel::events {

struct Armed {
    static constexpr ports::EventNames names{"armed"};
};

struct Disarmed {
    static constexpr ports::EventNames names{"disarmed"};
};

struct Trigger {
    static constexpr ports::EventNames names{"trigger", "reason"};
    std::string_view reason; ///< raw value of a `TriggerReason`
};

/// The user sees a notice, or (without text) no longer.
struct Notice {
    static constexpr ports::EventNames names{"notice", "field", "text"};
    std::string_view field;
    std::optional<std::string_view> text;
};

/// The product's view; `AlarmHeard` tells whether the tone was heard.
struct AlarmStarted {
    static constexpr ports::EventNames names{"alarm.started", "mode", "device", "volume"};
    std::string_view mode; ///< "tone" or "beep"
    std::optional<std::int64_t> device;
    double volume = 0.0; ///< 0 to 1
};

struct AlarmStopped {
    static constexpr ports::EventNames names{"alarm.stopped"};
};

struct VolumeEnforced {
    static constexpr ports::EventNames names{"volume.enforced", "device"};
    std::int64_t device = 0;
};

struct ToneRestarted {
    static constexpr ports::EventNames names{"tone.restarted"};
};

struct PhotoTaken {
    static constexpr ports::EventNames names{"photo.taken", "bytes", "width", "height", "attempts"};
    std::int64_t bytes = 0;
    std::optional<std::int64_t> width;  ///< pixels
    std::optional<std::int64_t> height; ///< pixels
    std::int64_t attempts = 1;
};

struct NoPhoto {
    static constexpr ports::EventNames names{"photo.none", "why"};
    std::string_view why;
};

struct AlertSaved {
    static constexpr ports::EventNames names{"alert.saved", "id", "reason", "photo"};
    std::string_view id;
    std::string_view reason;
    bool photo = false;
};

struct AlertSaveFailed {
    static constexpr ports::EventNames names{"alert.saveFailed", "id", "why"};
    std::string_view id;
    std::string_view why;
};

struct AlertFailed {
    static constexpr ports::EventNames names{"alert.failed", "reason", "why"};
    std::string_view reason;
    std::string_view why;
};

struct AlertUploaded {
    static constexpr ports::EventNames names{"alert.uploaded", "id"};
    std::string_view id;
};

struct AlertUploadFailed {
    static constexpr ports::EventNames names{"alert.uploadFailed", "id", "code", "message"};
    std::string_view id;
    std::int64_t code = 0; ///< of CloudKit; 0 for another error
    std::string_view message;
};

struct UploadRaised {
    static constexpr ports::EventNames names{"upload.raised", "id"};
    std::string_view id;
};

struct AlertCacheDamaged {
    static constexpr ports::EventNames names{"alertCache.damaged"};
};

struct AlertCacheNotSaved {
    static constexpr ports::EventNames names{"alertCache.notSaved", "error"};
    std::int64_t error = 0; ///< an `errno`
};

struct CloudUserChanged {
    static constexpr ports::EventNames names{"cloud.userChanged"};
};

struct FanOut {
    static constexpr ports::EventNames names{"fanout"};
};

struct FanOutFailed {
    static constexpr ports::EventNames names{"fanout.failed", "why"};
    std::string_view why;
};

struct PresencePublished {
    static constexpr ports::EventNames names{"presence.published", "isArmed"};
    bool isArmed = false;
};

struct PresenceFailed {
    static constexpr ports::EventNames names{"presence.failed", "why"};
    std::string_view why;
};

struct PushReceived {
    static constexpr ports::EventNames names{"push.received", "subscription"};
    std::string_view subscription;
};

struct CommandApplied {
    static constexpr ports::EventNames names{"command.applied", "sequence", "why"};
    std::int64_t sequence = 0;
    std::string_view why;
};

struct CommandIgnored {
    static constexpr ports::EventNames names{"command.ignored", "sequence", "why"};
    std::int64_t sequence = 0;
    std::string_view why;
};

struct CoverShown {
    static constexpr ports::EventNames names{"cover.shown", "windows"};
    std::int64_t windows = 0;
};

struct CoverHidden {
    static constexpr ports::EventNames names{"cover.hidden"};
};

struct PasscodeTried {
    static constexpr ports::EventNames names{"passcode", "outcome"};
    std::string_view outcome;
};

} // namespace sentrel::events
