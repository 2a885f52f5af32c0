#include "simulation/icloud/SubscriptionCoding.hpp"

#include "foundation/UUID.hpp"

#include <nlohmann/json.hpp>

#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

namespace sentrel::simulation {

namespace {

using Argument = ports::CloudPredicate::Argument;

constexpr std::int64_t privateScope = 2; // CKDatabaseScopePrivate
constexpr std::int64_t version = 2;      // of the dictionary under "ck"

Json encodeArgument(const Argument& argument)
{
    Json json = Json::object();
    if (const auto* const text = std::get_if<std::string>(&argument)) {
        json["text"] = *text;
    } else if (const auto* const integer = std::get_if<std::int64_t>(&argument)) {
        json["integer"] = *integer;
    } else if (const auto* const date = std::get_if<Date>(&argument)) {
        json["date"] = date->secondsSinceReferenceDate;
    } else {
        json["integers"] = std::get<std::vector<std::int64_t>>(argument);
    }
    return json;
}

/// Throws for a number that isn't whole, whose conversion would be undefined.
std::int64_t integerOf(const Json& json)
{
    if (!json.is_number_integer()) {
        throw std::invalid_argument{"not a whole number"};
    }
    return json.get<std::int64_t>();
}

Argument decodeArgument(const Json& json)
{
    if (const Json* const text = member(json, "text")) {
        return text->get<std::string>();
    }
    if (const Json* const integer = member(json, "integer")) {
        return integerOf(*integer);
    }
    if (const Json* const date = member(json, "date")) {
        return Date{date->get<double>()};
    }
    std::vector<std::int64_t> integers;
    for (const Json& integer : json.at("integers")) {
        integers.push_back(integerOf(integer));
    }
    return integers;
}

/// Null for lists and assets, which pushes omit.
Json valueForPush(const ServerValue& value)
{
    Json json;
    if (const auto* const text = std::get_if<std::string>(&value)) {
        json = *text;
    } else if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        json = *integer;
    } else if (const auto* const real = std::get_if<double>(&value)) {
        json = *real;
    } else if (const auto* const date = std::get_if<Date>(&value)) {
        json = date->secondsSinceReferenceDate;
    }
    return json;
}

/// The notification's text key and arguments, from the fields it names.
Json alertOf(const ports::CloudSubscription& subscription, const ServerRecord& record)
{
    Json arguments = Json::array();
    for (const std::string& field : subscription.alertLocalizationArguments) {
        const auto found = record.fields.find(field);
        const Json value = found == record.fields.end() ? Json() : valueForPush(found->second);
        arguments.push_back(value.is_string() ? value : Json(value.is_null() ? "" : encodeJson(value)));
    }
    Json alert = Json::object();
    alert["loc-key"] = subscription.alertLocalizationKey;
    alert["loc-args"] = std::move(arguments);
    return alert;
}

Json apsOf(const ports::CloudSubscription& subscription, const ServerRecord& record)
{
    Json aps = Json::object();
    if (!subscription.alertLocalizationKey.empty()) {
        aps["alert"] = alertOf(subscription, record);
    }
    if (!subscription.soundName.empty()) {
        aps["sound"] = subscription.soundName;
    }
    if (subscription.sendsContentAvailable) {
        aps["content-available"] = 1;
    }
    return aps;
}

std::string identifierOf(std::int64_t number)
{
    UUID::Octets octets{};
    for (std::size_t place = octets.size(); number > 0 && place > 0; number >>= 8) {
        octets[--place] = static_cast<std::uint8_t>(number & 0xFF);
    }
    return UUID{octets}.text();
}

} // namespace

std::string encodeSubscription(const ports::CloudSubscription& subscription)
{
    Json arguments = Json::array();
    for (const Argument& argument : subscription.predicate.arguments) {
        arguments.push_back(encodeArgument(argument));
    }
    Json json = Json::object();
    json["identifier"] = subscription.identifier;
    json["recordType"] = subscription.recordType;
    json["format"] = subscription.predicate.format;
    json["arguments"] = std::move(arguments);
    json["options"] = subscription.options;
    json["alertLocalizationKey"] = subscription.alertLocalizationKey;
    json["alertLocalizationArguments"] = subscription.alertLocalizationArguments;
    json["soundName"] = subscription.soundName;
    json["desiredKeys"] = subscription.desiredKeys;
    json["sendsContentAvailable"] = subscription.sendsContentAvailable;
    return encodeJson(json);
}

std::optional<ports::CloudSubscription> decodeSubscription(BytesView text)
{
    const auto json = parseJson(text);
    if (!json) {
        return std::nullopt;
    }
    try {
        ports::CloudSubscription subscription;
        json->at("identifier").get_to(subscription.identifier);
        json->at("recordType").get_to(subscription.recordType);
        json->at("format").get_to(subscription.predicate.format);
        for (const Json& argument : json->at("arguments")) {
            subscription.predicate.arguments.push_back(decodeArgument(argument));
        }
        subscription.options = static_cast<std::uint64_t>(integerOf(json->at("options")));
        json->at("alertLocalizationKey").get_to(subscription.alertLocalizationKey);
        json->at("alertLocalizationArguments").get_to(subscription.alertLocalizationArguments);
        json->at("soundName").get_to(subscription.soundName);
        json->at("desiredKeys").get_to(subscription.desiredKeys);
        json->at("sendsContentAvailable").get_to(subscription.sendsContentAvailable);
        return subscription;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

Json pushDictionary(const ports::CloudSubscription& subscription, const ServerRecord& record, PushReason reason,
                    std::int64_t number, const std::string& owner)
{
    Json fields = Json::object();
    for (const std::string& key : subscription.desiredKeys) {
        if (const auto found = record.fields.find(key); found != record.fields.end()) {
            fields[key] = valueForPush(found->second);
        }
    }
    Json query = Json::object();
    query["af"] = std::move(fields);
    query["dbs"] = privateScope;
    query["fo"] = static_cast<std::int64_t>(reason);
    query["rid"] = record.name;
    query["sid"] = subscription.identifier;
    query["zid"] = "_defaultZone";
    query["zoid"] = owner;
    Json cloudKit = Json::object();
    cloudKit["ce"] = version;
    cloudKit["cid"] = "iCloud.pelma.Sentrel";
    cloudKit["nid"] = identifierOf(number);
    cloudKit["qry"] = std::move(query);
    Json push = Json::object();
    push["aps"] = apsOf(subscription, record);
    push["ck"] = std::move(cloudKit);
    return push;
}

} // namespace sentrel::simulation
