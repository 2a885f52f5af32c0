#include "simulation/storm/DrawnMac.hpp"

#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

namespace {

void put(std::vector<std::pair<std::string, std::string>>& keys, std::string key, std::string value)
{
    keys.emplace_back(std::move(key), std::move(value));
}

} // namespace

DrawnMac describeMac(Dice& dice, Plan& plan)
{
    DrawnMac mac;
    put(plan.mac, "localizedName", "Maya's MacBook");
    mac.hasAccount = dice.chance(90);
    put(plan.mac, "icloud", mac.hasAccount ? "maya" : "none");
    put(plan.mac, "camera", dice.chance(70) ? "{devices: built-in, share: 16}" : "{devices: none}");
    put(plan.mac, "login", "cancel");
    mac.hasPasscode = dice.chance(40); // one takes more processor time than a day of rest
    if (mac.hasPasscode) {
        put(plan.mac, "passcode", "\"2468\"");
    }
    put(plan.mac, "displays", std::to_string(dice.between(1, 3)));
    if (dice.chance(80)) {
        put(plan.mac, "music", "playing");
        put(plan.mac, "automationConsent", dice.chance(80) ? "granted" : "denied");
    }
    if (dice.chance(60)) {
        mac.hasHeadphones = true;
        put(plan.mac, "audio",
            "[{id: 80, name: Jack, uid: BuiltInJack, transport: built-in}, "
            "{id: 73, name: MacBook Pro Speakers, uid: BuiltInSpeakerDevice, transport: built-in, volume: 0.4}, "
            "{id: 91, name: Headphones, uid: usb-91, transport: usb, volume: 0.7}]");
        put(plan.mac, "defaultOutput", dice.chance(50) ? "91" : "73");
    }
    put(plan.settings, "motionSensitivity", "0.55");
    if (mac.hasPasscode && dice.chance(50)) {
        put(plan.settings, "lockScreenOnArm", "true");
        put(plan.settings, "triggerOnFailedUnlock", dice.chance(60) ? "true" : "false");
    }
    if (dice.chance(20)) {
        put(plan.settings, "requirePasswordForActions", "false");
    }
    if (dice.chance(50)) {
        put(plan.settings, "capturePhoto", "false");
    }
    return mac;
}

} // namespace sentrel::simulation
