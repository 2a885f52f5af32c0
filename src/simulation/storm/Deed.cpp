#include "simulation/storm/Deed.hpp"

#include "simulation/mac/CloudChange.hpp"
#include "simulation/mac/motion/MotionChange.hpp"
#include "simulation/stage/MenuUse.hpp"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>

namespace sentrel::simulation {

namespace {

struct DeedRow {
    std::string_view word; ///< of the action
    Deed (*read)(const Action& action);
};

Deed screen(const Action& /*action*/)
{
    return {.usesScreen = true};
}

Deed menu(const Action& action)
{
    const MenuUse& use = *action.value<MenuUse>();
    return {.usesScreen = true, .clicksStop = use.kind == MenuUse::Kind::press && use.wanted == "stopAlarm"};
}

Deed output(const Action& /*action*/)
{
    return {.touchesOutput = true};
}

Deed end(const Action& /*action*/)
{
    return {.quits = true};
}

Deed cloud(const Action& action)
{
    return {.cloudChange = *action.value<CloudChange>()};
}

Deed movement(const Action& action)
{
    constexpr double slightest = 0.02; // g; the most sensitive setting takes more
    const auto* const sample = std::get_if<Acceleration>(action.value<MotionChange>());
    if (sample == nullptr) {
        return {};
    }
    const double length = std::hypot(sample->x, sample->y, sample->z);
    return {.violentMotion = std::abs(length - 1.0) > slightest || std::hypot(sample->x, sample->y) > slightest};
}

Deed settings(const Action& action)
{
    Deed deed{.changesSettings = true};
    const Json& fields = *action.value<Json>();
    if (fields.contains("isArmed")) {
        deed.setsArmed = fields["isArmed"].get<bool>();
    }
    return deed;
}

/// The actions that matter.
constexpr std::array<DeedRow, 23> rows{{
    {"arm", [](const Action&) { return Deed{.setsArmed = true}; }},
    {"disarm", [](const Action&) { return Deed{.setsArmed = false}; }},
    {"stop-alarm", [](const Action&) { return Deed{.stopsAlarm = true}; }},
    {"crash", [](const Action&) { return Deed{.crashes = true}; }},
    {"quit", end},
    {"relaunch", end},
    {"accelerometer", movement},
    {"set", settings},
    {"menu", menu},
    {"login", [](const Action& action) { return Deed{.login = *action.value<LoginAnswer>()}; }},
    {"click", screen},
    {"press", screen},
    {"slide", screen},
    {"volume", output},
    {"default-output", output},
    {"audio-device", output},
    {"set-passcode", [](const Action& action) { return Deed{.newPasscode = *action.value<std::string>()}; }},
    {"type-passcode", [](const Action& action) { return Deed{.passcode = *action.value<std::string>()}; }},
    {"clock", [](const Action&) { return Deed{.jumpsClock = true}; }},
    {"icloud", cloud},
    {"network", cloud},
    {"phone", [](const Action& action) { return Deed{.phoneCommand = *action.value<CompanionPhone::Command>()}; }},
    {"delete-alerts", [](const Action&) { return Deed{.deletesAlerts = true}; }},
}};

} // namespace

Deed deedOf(const Action& action)
{
    for (const DeedRow& row : rows) {
        if (row.word == action.name()) {
            return row.read(action);
        }
    }
    return {};
}

} // namespace sentrel::simulation
