#include "simulation/story/StoryText.hpp"

#include "core/TriggerReason.hpp"
#include "ports/Language.hpp"
#include "simulation/Word.hpp"
#include "simulation/stage/CloudText.hpp"
#include "simulation/stage/Wording.hpp"

#include <array>

namespace sentrel::simulation {

namespace {

using Mac = MacDescription;

/// The story is told in English, whatever the simulated MacBook speaks.
class EnglishTexts final : public ports::Language {
public:
    std::string localized(std::string_view key) override { return std::string{key}; }
    bool containsIgnoringCase(std::string_view text, std::string_view part) override
    {
        return text.find(part) != std::string_view::npos;
    }
    std::size_t characterCount(std::string_view text) override { return text.size(); }
};

constexpr std::array<Word<Mac::Power>, 3> powerTexts{{
    {"on its charger", Mac::Power::ac},
    {"on battery", Mac::Power::battery},
    {"that doesn't tell where its power comes from", Mac::Power::unknown},
}};

constexpr std::array<Word<Mac::Lid>, 3> lidTexts{{
    {", its lid open", Mac::Lid::open},
    {", its lid closed", Mac::Lid::closed},
    {", without a lid", Mac::Lid::absent},
}};

std::string soundText(const Mac& mac)
{
    for (const auto& device : mac.audio) {
        if (device.id == mac.defaultOutput) {
            return "Sound goes to " + device.name + " at " +
                   percent(static_cast<double>(device.volume().value_or(1.0F))) + (device.isMuted() ? ", muted." : ".");
        }
    }
    return mac.audio.empty() ? "It has no sound." : "No sound output is chosen.";
}

std::string musicText(const Mac& mac)
{
    if (mac.music == Mac::Music::absent) {
        return {};
    }
    return (mac.music == Mac::Music::playing ? " Music is playing" : " Music is paused") +
           std::string{mac.automationConsent == Mac::Consent::granted  ? ", and Sentrel may pause it."
                       : mac.automationConsent == Mac::Consent::denied ? ", and Sentrel may not touch it."
                                                                       : "."};
}

std::string camerasText(const Mac& mac)
{
    if (!mac.camera.devices || mac.camera.devices->empty()) {
        return {};
    }
    std::string text = " It has a " + listed(*mac.camera.devices);
    if (mac.camera.brightness && *mac.camera.brightness) {
        text += ", which looks at a scene of " + percent(**mac.camera.brightness) + " brightness";
    }
    return text + ".";
}

std::string displaysText(const Mac& mac)
{
    return mac.displays == 1 ? std::string{} : " It has " + std::to_string(mac.displays) + " displays.";
}

std::string passcodeText(const Mac& mac)
{
    return mac.passcode ? " The unlock passcode is " + quotation(*mac.passcode) + "." : std::string{};
}

} // namespace

std::string describe(const Mac& mac)
{
    const std::string product = mac.productName.value_or(mac.model);
    std::string text = (product.starts_with('i') ? "An " : "A ") + product; // an iMac
    text += mac.localizedName ? " called " + quotation(*mac.localizedName) + " " : " without a name ";
    text += wordFor(powerTexts, mac.power);
    text += wordFor(lidTexts, mac.lid);
    text += mac.accelerometer == Mac::Accelerometer::absent ? ", without an accelerometer. " : ". ";
    return text + soundText(mac) + musicText(mac) + camerasText(mac) + displaysText(mac) + passcodeText(mac) +
           accountText(mac.iCloud);
}

std::string reasonTitle(std::string_view rawValue)
{
    EnglishTexts english;
    const auto reason = triggerReason(rawValue);
    return reason ? title(*reason, english) : std::string{rawValue};
}

} // namespace sentrel::simulation
