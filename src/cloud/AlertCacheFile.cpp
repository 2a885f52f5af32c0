#include "cloud/AlertCacheFile.hpp"

#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>

#include <utility>

namespace sentrel {

namespace {

constexpr std::uint32_t formatVersion = 1;

template <class Identifiers> Json textsOf(const Identifiers& ids)
{
    Json texts = Json::array();
    for (const UUID& id : ids) {
        texts.push_back(id.text());
    }
    return texts;
}

std::optional<std::vector<UUID>> idsMember(const Json& document, std::string_view key)
{
    const Json* const texts = member(document, key);
    if (texts == nullptr || !texts->is_array()) {
        return std::nullopt;
    }
    std::vector<UUID> ids;
    for (const Json& text : *texts) {
        const auto id = text.is_string() ? UUID::parse(text.get_ref<const std::string&>()) : std::nullopt;
        if (!id) {
            return std::nullopt;
        }
        ids.push_back(*id);
    }
    return ids;
}

std::optional<AlertMap> alertsMember(const Json& document)
{
    const Json* const entries = member(document, "alerts");
    if (entries == nullptr || !entries->is_array()) {
        return std::nullopt;
    }
    AlertMap alerts;
    alerts.reserve(entries->size());
    for (const Json& entry : *entries) {
        auto alert = decodeAlertEvent(entry);
        if (!alert) {
            return std::nullopt;
        }
        const UUID id = alert->id;
        alerts.insert_or_assign(id, *std::move(alert));
    }
    return alerts;
}

} // namespace

void AlertCacheEncoder::put(const AlertEvent& alert)
{
    std::string& text = texts_[alert.id];
    try {
        text = encodeJson(encodeAlertEvent(alert));
    } catch (const JsonEncodingError&) {
        text.clear();
    }
}

std::string AlertCacheEncoder::document(const AlertCacheContents& contents) const
{
    Json document = Json::object();
    document["version"] = formatVersion;
    if (contents.owner) {
        document["owner"] = *contents.owner;
    }
    document["isComplete"] = contents.isComplete;
    document["catalogAdditions"] = textsOf(contents.debts.additions);
    document["catalogRemovals"] = textsOf(contents.debts.removals);
    std::string text = encodeJson(document);
    text.back() = ',';
    text += "\"alerts\":[";
    std::size_t length = text.size() + 2;
    for (const auto& [id, alert] : texts_) {
        length += alert.size() + 1;
    }
    text.reserve(length);
    for (const auto& [id, alert] : texts_) {
        if (alert.empty()) {
            throw JsonEncodingError{"an alert's date isn't finite"};
        }
        text += alert;
        text += ',';
    }
    if (text.back() == ',') {
        text.pop_back();
    }
    return text += "]}";
}

std::string encodeAlertCache(const AlertCacheContents& contents)
{
    AlertCacheEncoder encoder;
    for (const auto& [id, alert] : contents.alerts) {
        encoder.put(alert);
    }
    return encoder.document(contents);
}

std::optional<AlertCacheContents> decodeAlertCache(BytesView file)
{
    const auto document = parseJson(file);
    if (!document || uint32Member(*document, "version") != formatVersion) {
        return std::nullopt;
    }
    auto owner = textMember(*document, "owner");
    const auto isComplete = boolMember(*document, "isComplete");
    auto additions = idsMember(*document, "catalogAdditions");
    const auto removals = idsMember(*document, "catalogRemovals");
    auto alerts = alertsMember(*document);
    const bool isOwnerMalformed = !owner && !isAbsent(*document, "owner");
    if (isOwnerMalformed || !isComplete || !additions || !removals || !alerts) {
        return std::nullopt;
    }
    return AlertCacheContents{std::move(owner),
                              *isComplete,
                              *std::move(alerts),
                              {*std::move(additions), {removals->begin(), removals->end()}}};
}

} // namespace sentrel
