#include "simulator/SettingsReader.hpp"

#include "core/AlarmSettings.hpp"
#include "simulator/ValueReader.hpp"

#include <algorithm>
#include <array>
#include <variant>

namespace sentrel::simulator {

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
            fields[std::string{field.name}] = readNumber(value.items[i], what);
        }
    }
    return fields;
}

} // namespace sentrel::simulator
