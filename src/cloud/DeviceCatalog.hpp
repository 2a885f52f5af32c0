#pragma once

#include "foundation/Date.hpp"
#include "ports/CloudRecord.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sentrel {

// How the Macs and the phone of one account find each other. The catalog is one record that lists device identifiers.
// Each Mac has two more records of the same type: its presence, and the phone's command for it. They are separate
// because a subscription reports every change of a matching record: with the command in the presence record, each
// heartbeat would push to all devices, and the system delays pushes that are too frequent.

inline constexpr const char* deviceCatalogRecordType = "MacDeviceCatalog";
inline constexpr const char* deviceCatalogRecordName = "mac-device-catalog";

/// The catalog's field: a list of texts.
inline constexpr const char* deviceIDsField = "deviceIDs";

/// The command's field for the requested state: 1 to arm, 0 to disarm.
inline constexpr const char* requestedArmStateField = "requestedArmState";

/// The name of a Mac's presence record: the catalog's, a hyphen and the device's identifier.
[[nodiscard]] std::string deviceRecordName(const std::string& deviceID);

/// The name of the record with the command for one Mac.
[[nodiscard]] std::string commandRecordName(const std::string& deviceID);

/// The state that a Mac publishes.
struct DevicePresence {
    std::string deviceID;
    std::string deviceName;
    Date lastSeen;
    bool isCompatible = false;
    bool isArmed = false;
    friend bool operator==(const DevicePresence&, const DevicePresence&) = default;
};

/// A request of the phone to a Mac.
struct RemoteCommand {
    std::int64_t sequence = 0;
    std::optional<Date> issuedAt;
    bool requestedArmState = false; ///< true asks to arm
    friend bool operator==(const RemoteCommand&, const RemoteCommand&) = default;
};

/// The presence record of a Mac.
[[nodiscard]] ports::CloudRecord presenceRecord(const DevicePresence& presence);

/// None when a field is missing or of another type; a missing name is "Mac".
[[nodiscard]] std::optional<DevicePresence> presenceOf(const ports::CloudRecord& record);

/// The fields of a command.
[[nodiscard]] std::vector<std::string> commandKeys();

/// The command in a record; none when there is no sequence or no requested state.
[[nodiscard]] std::optional<RemoteCommand> commandOf(const ports::CloudRecord& record);

/// The record with the command for this device.
[[nodiscard]] ports::CloudRecord commandRecord(const std::string& deviceID, const RemoteCommand& command);

} // namespace sentrel
