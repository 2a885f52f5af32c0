#include "core/AlertEvent.hpp"

#include "foundation/Hasher.hpp"

#include <nlohmann/json.hpp>

namespace sentrel {

Json encodeAlertEvent(const AlertEvent& alert)
{
    Json document = Json::object();
    document["id"] = alert.id.text();
    document["reason"] = rawValue(alert.reason);
    document["timestamp"] = alert.timestamp.secondsSinceReferenceDate;
    document["deviceName"] = alert.deviceName;
    if (alert.photoFileName) {
        document["photoFileName"] = *alert.photoFileName;
    }
    document["sendNotification"] = alert.sendNotification;
    return document;
}

std::optional<AlertEvent> decodeAlertEvent(const Json& document)
{
    const auto id = UUID::parse(textMember(document, "id").value_or(""));
    const auto reason = triggerReason(textMember(document, "reason").value_or(""));
    const auto timestamp = doubleMember(document, "timestamp");
    const auto deviceName = textMember(document, "deviceName");
    const auto photoFileName = textMember(document, "photoFileName");
    const auto sendNotification = boolMember(document, "sendNotification");
    const bool isPhotoMalformed = !photoFileName && !isAbsent(document, "photoFileName");
    if (!id || !reason || !timestamp || !deviceName || !sendNotification || isPhotoMalformed) {
        return std::nullopt;
    }
    return AlertEvent{*id, *reason, Date{*timestamp}, *deviceName, photoFileName, *sendNotification};
}

} // namespace sentrel

std::size_t std::hash<sentrel::AlertEvent>::operator()(const sentrel::AlertEvent& alert) const noexcept
{
    sentrel::Hasher hasher;
    hasher.add(alert.id);
    hasher.add(alert.reason);
    hasher.add(alert.timestamp.secondsSinceReferenceDate);
    hasher.add(alert.deviceName);
    // A marker tells no photo from a photo with an empty name.
    hasher.add(alert.photoFileName ? 1 : 0);
    if (alert.photoFileName) {
        hasher.add(*alert.photoFileName);
    }
    hasher.add(alert.sendNotification);
    return hasher.hash();
}
