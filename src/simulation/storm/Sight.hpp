#pragma once

#include "alerts/AlertRow.hpp"
#include "core/AlarmSettings.hpp"
#include "foundation/UUID.hpp"
#include "simulation/mac/sound/AudioDevice.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace sentrel::simulation {

/// The settings of the sound output.
struct OutputState {
    std::optional<ports::AudioObjectId> defaultOutput;
    std::map<ports::AudioObjectId, std::pair<std::optional<float>, bool>> devices; ///< volume and mute of each
    friend bool operator==(const OutputState&, const OutputState&) = default;
};

/// An alert in one place.
struct SeenAlert {
    std::string reason;
    bool isPending = false;
};
/// A row of the list of alerts.
struct SeenRow {
    AlertStorageLocation storage = AlertStorageLocation::cloud;
    std::string reason;
    friend bool operator==(const SeenRow&, const SeenRow&) = default;
};
using SeenAlerts = std::unordered_map<UUID, SeenAlert>;

/// The state of the simulated MacBook at one instant, as its devices, its disk and the server show it.
struct Sight {
    double at = 0.0; ///< seconds since the start
    bool isRunning = false;
    bool isAsleep = false;
    bool showsArmed = false;    ///< the icon in the menu bar
    bool menuSaysArmed = false; ///< the menu's header
    bool offersStop = false;    ///< the menu has a button that stops the alarm
    std::size_t covers = 0;     ///< windows of the lock screen
    std::size_t displays = 0;
    bool isSounding = false; ///< a tone or beeps are played, even if nobody hears them
    bool isAudible = false;
    bool isOnAC = true;
    bool isLidClosed = false;
    OutputState output{};
    bool holdsArmedAssertion = false;
    bool holdsAlarmAssertion = false;
    std::optional<AlarmSettings> settings{}; ///< as stored on the disk; none if nothing readable is there
    SeenAlerts onDisk{};
    std::map<std::string, std::set<UUID>> inCloud{}; ///< by user
    std::map<UUID, SeenRow> listed{};                ///< the list of alerts
    std::size_t owedDeletions = 0;
    std::string user{};
    bool hasAccount = false;
    bool isOnline = false;
    bool isStorageFull = false;
    std::optional<bool> phoneSaysArmed{}; ///< the owner's phone of this Mac, when it was asked last
    double phoneAskedAt = -1.0;
    std::size_t timers = 0; ///< armed on the clock
    std::size_t memory = 0; ///< bytes allocated by this process when it was asked last; 0 where nothing tells
    double memoryReadAt = -1.0;
};

} // namespace sentrel::simulation
