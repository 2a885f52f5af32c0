#include "cloud/AlertRecord.hpp"

#include "cloud/RecordText.hpp"

#include <cmath>

namespace sentrel {

namespace {

constexpr const char* reasonField = "reason";
constexpr const char* triggerNameField = "triggerName";
constexpr const char* timestampField = "timestamp";
constexpr const char* deviceNameField = "deviceName";
constexpr const char* sendNotificationField = "sendNotification";

} // namespace

std::vector<std::string> alertListKeys()
{
    return {reasonField, timestampField, deviceNameField, sendNotificationField};
}

ports::CloudRecord alertRecord(const AlertEvent& alert, const std::string& deviceName, ports::Language& language)
{
    ports::CloudRecord record;
    record.type = alertRecordType;
    record.name = alert.id.text();
    record.fields[reasonField] = std::string{rawValue(alert.reason)};
    record.fields[triggerNameField] = shortTitle(alert.reason, language);
    record.fields[timestampField] = alert.timestamp;
    record.fields[deviceNameField] = deviceName;
    record.fields[sendNotificationField] = std::int64_t{alert.sendNotification};
    return record;
}

std::optional<AlertEvent> alertOf(const ports::CloudRecord& record)
{
    const auto id = UUID::parse(record.name);
    const auto* const reasonText = ports::fieldOf<std::string>(record, reasonField);
    const auto reason = reasonText != nullptr ? triggerReason(*reasonText) : std::nullopt;
    const auto* const timestamp = ports::fieldOf<Date>(record, timestampField);
    if (!id || !reason || timestamp == nullptr || !std::isfinite(timestamp->secondsSinceReferenceDate)) {
        return std::nullopt;
    }
    const auto* const sendNotification = ports::fieldOf<std::int64_t>(record, sendNotificationField);
    AlertEvent alert;
    alert.id = *id;
    alert.reason = *reason;
    alert.timestamp = *timestamp;
    alert.deviceName = deviceNameOf(record, deviceNameField);
    alert.sendNotification = sendNotification == nullptr || *sendNotification != 0;
    if (ports::fieldOf<ports::CloudAsset>(record, alertPhotoField) != nullptr) {
        alert.photoFileName = record.name + ".jpg";
    }
    return alert;
}

} // namespace sentrel
