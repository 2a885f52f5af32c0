#include "simulation/stage/SettingsReader.hpp"

#include "core/AlarmSettings.hpp"
#include "simulation/stage/ValueReader.hpp"

#include <algorithm>
#include <array>
#include <variant>

namespace sentrel::simulation {

namespace {

/// Upper bound of a numeric setting. The product accepts any number; larger ones are mistakes in a scenario.
struct Bounds {
    std::string_view field;
    double most;
};

constexpr std::array<Bounds, 4> bounds{{
    {"motionSensitivity", 1.0},
    {"alarmVolume", 1.0},
    {"lockScreenSleepDelay", 86'400.0}, // seconds: a day
    {"failedUnlockAttemptLimit", 1000.0},
}};

double mostOf(std::string_view field)
{
    return std::ranges::find(bounds, field, &Bounds::field)->most;
}

} // namespace

Json readSettings(const YamlValue& value)
{
    requireMap(value, "settings");
    std::array<std::string_view, alarmSettingsFields.size()> names;
    std::ranges::transform(alarmSettingsFields, names.begin(),
                           [](const AlarmSettingsField& field) { return field.name; });
    KeyChecker checker{names, "settings"};
    Json fields = Json::object();
    for (std::size_t i = 0; i < value.keys.size(); ++i) {
        const AlarmSettingsField& field = alarmSettingsFields[checker.placeOf(value.keys[i])];
        const std::string what = inQuotes(field.name);
        if (std::holds_alternative<bool AlarmSettings::*>(field.member)) {
            fields[std::string{field.name}] = readFlag(value.items[i], what);
        } else {
            fields[std::string{field.name}] = readNumber(value.items[i], what, 0.0, mostOf(field.name));
        }
    }
    return fields;
}

} // namespace sentrel::simulation
