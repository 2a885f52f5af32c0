#pragma once

#include "foundation/Date.hpp"
#include "platform/CloudRecord.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sentrel {

// How the Macs and the phone of one account know each other. The catalog is one record that lists device identifiers;
// beside it each Mac has a record of its own, of the same type. The Mac writes the presence fields of its record, the
// phone its command fields, both with the policy "changed keys", so that nobody overwrites anybody.

inline constexpr const char* deviceCatalogRecordType = "MacDeviceCatalog";
inline constexpr const char* deviceCatalogRecordName = "mac-device-catalog";

/// The catalog's field: a list of texts.
inline constexpr const char* deviceIDsField = "deviceIDs";

/// The command's field that says what the phone asks: 1 to arm, 0 to disarm.
inline constexpr const char* requestedArmStateField = "requestedArmState";

/// The name of the record of one Mac: the catalog's, a hyphen and the device's identifier.
[[nodiscard]] std::string deviceRecordName(const std::string& deviceID);

/// What a Mac tells of itself.
struct DevicePresence {
    std::string deviceID;
    std::string deviceName;
    Date lastSeen;
    bool isCompatible = false;
    bool isArmed = false;
    friend bool operator==(const DevicePresence&, const DevicePresence&) = default;
};

/// What the phone asks of a Mac.
struct RemoteCommand {
    std::int64_t sequence = 0;
    std::optional<Date> issuedAt;
    bool requestedArmState = false; ///< true asks to arm
    friend bool operator==(const RemoteCommand&, const RemoteCommand&) = default;
};

/// The record with the presence fields and no others.
[[nodiscard]] platform::CloudRecord presenceRecord(const DevicePresence& presence);

/// None when a field is missing or of another type; a missing name is "Mac".
[[nodiscard]] std::optional<DevicePresence> presenceOf(const platform::CloudRecord& record);

/// The fields that make up a command.
[[nodiscard]] const std::vector<std::string>& commandKeys();

/// The command in a Mac's record; none when there is no sequence or no requested state.
[[nodiscard]] std::optional<RemoteCommand> commandOf(const platform::CloudRecord& record);

/// The record with the command fields and no others.
[[nodiscard]] platform::CloudRecord commandRecord(const std::string& deviceID, const RemoteCommand& command);

} // namespace sentrel
