#include "simulation/stage/SettingsReader.hpp"

#include <algorithm>
#include <array>
#include <variant>

namespace sentrel::simulation {

namespace {

/// Upper bound of a numeric setting. The product accepts any number; larger ones are mistakes in a scenario.
constexpr std::array<Word<double>, 4> bounds{{
    {"motionSensitivity", 1.0},
    {"alarmVolume", 1.0},
    {"lockScreenSleepDelay", 86'400.0}, // seconds: a day
    {"failedUnlockAttemptLimit", 1000.0},
}};

template <class T> Field<Json> settingField(std::string_view name, ValueType<T> type)
{
    return {name,
            [name, read = std::move(type.read)](Json& into, const YamlValue& value, const ReadContext& context) {
                into[std::string{name}] = read(value, inQuotes(name), context);
            },
            std::move(type.schema)};
}

Fields<Json> settingFields()
{
    Fields<Json> fields;
    for (const AlarmSettingsField& field : alarmSettingsFields) {
        const auto* const bound = std::ranges::find(bounds, field.name, &Word<double>::text);
        const bool isFlag = std::holds_alternative<bool AlarmSettings::*>(field.member);
        fields.push_back(isFlag ? settingField(field.name, type::flag())
                                : settingField(field.name, type::number(0.0, bound->meaning)));
    }
    return fields;
}

} // namespace

ValueType<Json> settingsType()
{
    const Fields<Json> fields = settingFields();
    return {[fields](auto& value, auto, auto& context) {
                Json settings = Json::object();
                readFields(value, "settings", fields, settings, context);
                return settings;
            },
            schemaOf(fields)};
}

AlarmSettings withFields(AlarmSettings settings, const Json& fields)
{
    Json document = encodeAlarmSettings(settings);
    document.update(fields);
    return decodeAlarmSettings(document).value_or(settings);
}

} // namespace sentrel::simulation
