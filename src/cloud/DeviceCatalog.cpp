#include "cloud/DeviceCatalog.hpp"

#include "cloud/RecordText.hpp"

#include <cmath>
#include <utility>

namespace sentrel {

namespace {

constexpr const char* deviceIDField = "deviceID";
constexpr const char* deviceNameField = "deviceName";
constexpr const char* lastSeenField = "lastSeen";
constexpr const char* isCompatibleField = "isCompatible";
constexpr const char* isArmedField = "isArmed";
constexpr const char* sequenceField = "commandSequence";
constexpr const char* issuedAtField = "commandIssuedAt";

ports::CloudRecord catalogRecord(std::string name)
{
    ports::CloudRecord record;
    record.type = deviceCatalogRecordType;
    record.name = std::move(name);
    return record;
}

const Date* finiteDate(const ports::CloudRecord& record, const char* field)
{
    const auto* const date = ports::fieldOf<Date>(record, field);
    return date != nullptr && std::isfinite(date->secondsSinceReferenceDate) ? date : nullptr;
}

} // namespace

std::string deviceRecordName(const std::string& deviceID)
{
    return std::string{deviceCatalogRecordName} + "-" + deviceID;
}

std::string commandRecordName(const std::string& deviceID)
{
    return deviceRecordName(deviceID) + "-command";
}

ports::CloudRecord presenceRecord(const DevicePresence& presence)
{
    ports::CloudRecord record = catalogRecord(deviceRecordName(presence.deviceID));
    record.fields[deviceIDField] = presence.deviceID;
    record.fields[deviceNameField] = presence.deviceName;
    record.fields[lastSeenField] = presence.lastSeen;
    record.fields[isCompatibleField] = std::int64_t{presence.isCompatible};
    record.fields[isArmedField] = std::int64_t{presence.isArmed};
    return record;
}

std::optional<DevicePresence> presenceOf(const ports::CloudRecord& record)
{
    const auto* const deviceID = ports::fieldOf<std::string>(record, deviceIDField);
    const Date* const lastSeen = finiteDate(record, lastSeenField);
    const auto* const isCompatible = ports::fieldOf<std::int64_t>(record, isCompatibleField);
    const auto* const isArmed = ports::fieldOf<std::int64_t>(record, isArmedField);
    if (deviceID == nullptr || lastSeen == nullptr || isCompatible == nullptr || isArmed == nullptr) {
        return std::nullopt;
    }
    return DevicePresence{*deviceID, deviceNameOf(record, deviceNameField), *lastSeen, *isCompatible != 0,
                          *isArmed != 0};
}

std::vector<std::string> commandKeys()
{
    return {sequenceField, issuedAtField, requestedArmStateField};
}

std::optional<RemoteCommand> commandOf(const ports::CloudRecord& record)
{
    const auto* const sequence = ports::fieldOf<std::int64_t>(record, sequenceField);
    const auto* const requestedArmState = ports::fieldOf<std::int64_t>(record, requestedArmStateField);
    if (sequence == nullptr || requestedArmState == nullptr) {
        return std::nullopt;
    }
    const Date* const issuedAt = finiteDate(record, issuedAtField);
    return RemoteCommand{*sequence, issuedAt != nullptr ? std::optional{*issuedAt} : std::nullopt,
                         *requestedArmState != 0};
}

ports::CloudRecord commandRecord(const std::string& deviceID, const RemoteCommand& command)
{
    ports::CloudRecord record = catalogRecord(commandRecordName(deviceID));
    record.fields[sequenceField] = command.sequence;
    record.fields[requestedArmStateField] = std::int64_t{command.requestedArmState};
    if (command.issuedAt) {
        record.fields[issuedAtField] = *command.issuedAt;
    }
    return record;
}

} // namespace sentrel
