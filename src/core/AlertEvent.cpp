#include "core/AlertEvent.hpp"

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
    std::size_t seed = 0;
    const auto mix = [&seed](std::size_t value) { seed ^= value + 0x9E3779B97F4A7C15U + (seed << 6) + (seed >> 2); };
    mix(std::hash<sentrel::UUID>{}(alert.id));
    mix(std::hash<std::string_view>{}(sentrel::rawValue(alert.reason)));
    mix(std::hash<double>{}(alert.timestamp.secondsSinceReferenceDate));
    mix(std::hash<std::string>{}(alert.deviceName));
    // A marker tells no photo from a photo with an empty name.
    mix(alert.photoFileName ? 1 : 0);
    if (alert.photoFileName) {
        mix(std::hash<std::string>{}(*alert.photoFileName));
    }
    mix(alert.sendNotification ? 1 : 0);
    return seed;
}
