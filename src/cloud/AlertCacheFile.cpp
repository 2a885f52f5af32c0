#include "cloud/AlertCacheFile.hpp"

#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>

#include <utility>

namespace sentrel {

namespace {

constexpr std::uint32_t formatVersion = 1;
constexpr const char* beginning = "{\"alerts\":[";

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
    erase(alert.id);
    text_.resize(length_);
    try {
        append(alert.id, encodeJson(encodeAlertEvent(alert)));
    } catch (const JsonEncodingError&) {
        unencodable_.insert(alert.id);
    }
}

void AlertCacheEncoder::append(const UUID& id, std::string_view alert)
{
    text_ += text_.empty() ? beginning : ",";
    spans_[id] = {text_.size(), alert.size()};
    text_ += alert;
    length_ = text_.size();
}

void AlertCacheEncoder::erase(const UUID& id)
{
    unencodable_.erase(id);
    hasGaps_ = spans_.erase(id) > 0 || hasGaps_;
}

void AlertCacheEncoder::eraseAll()
{
    spans_.clear();
    unencodable_.clear();
    hasGaps_ = true;
}

void AlertCacheEncoder::compact()
{
    const std::string before = std::exchange(text_, {});
    text_.reserve(length_);
    for (const auto& [id, span] : spans_) {
        append(id, std::string_view{before}.substr(span.begin, span.length));
    }
    length_ = text_.size();
    hasGaps_ = false;
}

std::string_view AlertCacheEncoder::document(const AlertCacheContents& contents)
{
    if (!unencodable_.empty()) {
        throw JsonEncodingError{"an alert's date isn't finite"};
    }
    Json rest = Json::object();
    rest["version"] = formatVersion;
    if (contents.owner) {
        rest["owner"] = *contents.owner;
    }
    rest["isComplete"] = contents.isComplete;
    rest["catalogAdditions"] = textsOf(contents.debts.additions);
    rest["catalogRemovals"] = textsOf(contents.debts.removals);
    if (hasGaps_) {
        compact();
    }
    text_.resize(length_);
    text_ += text_.empty() ? beginning : "";
    text_ += "],";
    text_ += std::string_view{encodeJson(rest)}.substr(1);
    return text_;
}

std::string encodeAlertCache(const AlertCacheContents& contents)
{
    AlertCacheEncoder encoder;
    for (const auto& [id, alert] : contents.alerts) {
        encoder.put(alert);
    }
    return std::string{encoder.document(contents)};
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
