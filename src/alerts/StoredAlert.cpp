#include "alerts/StoredAlert.hpp"

#include <nlohmann/json.hpp>

namespace sentrel {

Json encodeStoredAlert(const StoredAlert& stored)
{
    Json document = Json::object();
    document["alert"] = encodeAlertEvent(stored.alert);
    document["pendingUpload"] = stored.pendingUpload;
    return document;
}

std::optional<StoredAlert> decodeStoredAlert(const Json& document)
{
    const Json* const alertDocument = member(document, "alert");
    const auto pendingUpload = boolMember(document, "pendingUpload");
    if (alertDocument == nullptr || !pendingUpload) {
        return std::nullopt;
    }
    auto alert = decodeAlertEvent(*alertDocument);
    if (!alert) {
        return std::nullopt;
    }
    return StoredAlert{*std::move(alert), *pendingUpload};
}

} // namespace sentrel
