#include "core/AlarmSettings.hpp"

#include "foundation/Hasher.hpp"

#include <nlohmann/json.hpp>

namespace sentrel {

namespace {

void decodeField(const Json& document, std::string_view name, bool& field)
{
    field = boolMember(document, name).value_or(field);
}

void decodeField(const Json& document, std::string_view name, double& field)
{
    field = doubleMember(document, name).value_or(field);
}

} // namespace

Json encodeAlarmSettings(const AlarmSettings& settings)
{
    Json document = Json::object();
    for (const AlarmSettingsField& field : alarmSettingsFields) {
        std::visit([&](auto member) { document[std::string{field.name}] = settings.*member; }, field.member);
    }
    return document;
}

std::optional<AlarmSettings> decodeAlarmSettings(const Json& document)
{
    if (!document.is_object()) {
        return std::nullopt;
    }
    AlarmSettings settings;
    for (const AlarmSettingsField& field : alarmSettingsFields) {
        std::visit([&](auto member) { decodeField(document, field.name, settings.*member); }, field.member);
    }
    return settings;
}

} // namespace sentrel

std::size_t std::hash<sentrel::AlarmSettings>::operator()(const sentrel::AlarmSettings& settings) const noexcept
{
    sentrel::Hasher hasher;
    for (const sentrel::AlarmSettingsField& field : sentrel::alarmSettingsFields) {
        std::visit([&](auto member) { hasher.add(settings.*member); }, field.member);
    }
    return hasher.hash();
}
