#include "simulation/storm/Thief.hpp"

#include <string>

namespace sentrel::simulation {

namespace {

std::vector<PlannedStep> moveLid(Dice& dice)
{
    std::vector<PlannedStep> steps{{0, "close-lid"}};
    if (dice.chance(50)) {
        steps.push_back({dice.spread(10, 5 * second), "open-lid"});
    }
    return steps;
}

std::vector<PlannedStep> guessPasscode(Dice& dice)
{
    // Six are one more than it takes to be locked out.
    const int times = dice.chance(10) ? 6 : 1;
    std::vector<PlannedStep> steps;
    for (int i = 0; i < times; ++i) {
        steps.push_back({i == 0 ? 0 : dice.spread(500, 3 * second),
                         "{type-passcode: \"" + std::to_string(dice.between(1000, 1003)) + "\"}"});
    }
    return steps;
}

std::vector<PlannedStep> pullCharger(Dice& dice)
{
    std::vector<PlannedStep> steps{{0, "unplug"}};
    if (dice.chance(25)) {
        steps.push_back({dice.spread(10, 20 * second), "plug-in"});
        steps.push_back({dice.spread(10, 20 * second), "unplug"});
    }
    return steps;
}

} // namespace

std::vector<PlannedStep> attack(Dice& dice)
{
    switch (dice.below(6)) {
    case 0:
        return moveLid(dice);
    case 1:
        return {{0, "{accelerometer: {sample: [0, 0, 1]}}"}, {20, "{accelerometer: {sample: [0.6, 0.2, 1.5]}}"}};
    case 2:
        return guessPasscode(dice);
    default:
        return pullCharger(dice);
    }
}

std::vector<PlannedStep> resistance(Dice& dice, const DrawnMac& mac)
{
    switch (dice.below(9)) {
    case 0:
        return {{0, std::string{"{volume: {device: 73, value: 0.0"} + (dice.chance(50) ? ", muted: true" : "") + "}}"}};
    case 1:
        return {{0, "{menu: stopAlarm}"}};
    case 2:
        return {{0, "{menu: armed}"}};
    case 3:
        return {{0, "{login: fail}"}, {0, "{menu: stopAlarm}"}, {second, "{login: cancel}"}};
    case 4:
        return {{0, mac.hasHeadphones ? "{default-output: 91}" : "{default-output: none}"}};
    case 5:
        return {{0, "quit"}};
    case 6:
        return {{0, "{displays: " + std::to_string(dice.between(1, 3)) + "}"}};
    case 7:
        return {{0, "{network: down}"}};
    default:
        return {{0, "{music: play}"}};
    }
}

} // namespace sentrel::simulation
