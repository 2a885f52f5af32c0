#include "simulation/story/StoryText.hpp"

#include "core/TriggerReason.hpp"
#include "ports/Language.hpp"
#include "simulation/story/CloudText.hpp"
#include "simulation/story/ShellText.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

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

std::string tenths(double number)
{
    std::array<char, 32> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.2f", number);
    return {text.data(), static_cast<std::size_t>(std::clamp(length, 0, 31))};
}

std::string listed(const std::vector<std::string>& words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += i == 0 ? "" : i + 1 == words.size() ? " and " : ", ";
        text += words[i];
    }
    return text;
}

std::string listed(const std::vector<CameraModel>& cameras)
{
    std::vector<std::string> names;
    for (const CameraModel& camera : cameras) {
        names.push_back(camera.name);
    }
    return listed(names);
}

std::string_view powerText(Mac::Power power)
{
    switch (power) {
    case Mac::Power::ac:
        return "on its charger";
    case Mac::Power::battery:
        return "on battery";
    case Mac::Power::unknown:
        return "that doesn't tell where its power comes from";
    }
    return "";
}

std::string_view lidText(Mac::Lid lid)
{
    switch (lid) {
    case Mac::Lid::open:
        return ", its lid open";
    case Mac::Lid::closed:
        return ", its lid closed";
    case Mac::Lid::absent:
        return ", without a lid";
    }
    return "";
}

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
    std::string text = mac.music == Mac::Music::playing ? " Music is playing" : " Music is paused";
    switch (mac.automationConsent) {
    case Mac::Consent::granted:
        return text + ", and Sentrel may pause it.";
    case Mac::Consent::denied:
        return text + ", and Sentrel may not touch it.";
    case Mac::Consent::undetermined:
        return text + ".";
    }
    return text;
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
    return mac.passcode ? " The unlock passcode is “" + *mac.passcode + "”." : std::string{};
}

std::string_view authorizationText(ports::CaptureAuthorization status)
{
    using ports::CaptureAuthorization;
    switch (status) {
    case CaptureAuthorization::authorized:
        return "Sentrel may use the camera.";
    case CaptureAuthorization::denied:
        return "Sentrel may not use the camera.";
    case CaptureAuthorization::restricted:
        return "The camera may not be used on this Mac.";
    case CaptureAuthorization::notDetermined:
        break;
    }
    return "Nobody has said yet whether Sentrel may use the camera.";
}

std::string photosText(const ChangeCamera& action)
{
    const CameraChange& change = action.change;
    std::string text;
    if (change.photo) {
        text += *change.photo ? " Every photo is now " + action.photoName + "." : " Photos show the café again.";
    }
    if (change.delay) {
        text += " A photo now takes " + tenths(toSeconds(*change.delay)) + " s.";
    }
    if (change.fails) {
        text += *change.fails ? " From now on every photo fails." : " Photos succeed again.";
    }
    return text;
}

std::string cameraText(const ChangeCamera& action)
{
    const CameraChange& change = action.change;
    std::string text;
    if (change.authorization) {
        text += " " + std::string{authorizationText(*change.authorization)};
    }
    if (change.devices) {
        text += change.devices->empty() ? " There is no camera any more."
                                        : " The cameras are now: " + listed(*change.devices) + ".";
    }
    if (change.brightness) {
        text += *change.brightness ? " The scene before the camera is now at " + percent(**change.brightness) + "."
                                   : " The scene before the camera is as bright as the day.";
    }
    return (text + photosText(action)).substr(1);
}

std::string_view accessText(ChangeKeychain::Access access)
{
    switch (access) {
    case ChangeKeychain::Access::open:
        return "is open";
    case ChangeKeychain::Access::locked:
        return "is locked";
    case ChangeKeychain::Access::denied:
        break;
    }
    return "refuses Sentrel";
}

std::string_view loginText(LoginAnswer answer)
{
    switch (answer) {
    case LoginAnswer::succeed:
        return "From now on the Mac login succeeds.";
    case LoginAnswer::fail:
        return "From now on the Mac login fails.";
    case LoginAnswer::cancel:
        return "From now on the login panel is cancelled.";
    case LoginAnswer::unavailable:
        break;
    }
    return "From now on macOS can't ask for the Mac login.";
}

std::string settingsText(const Json& fields)
{
    std::string text = "The owner sets ";
    bool isFirst = true;
    for (const auto& [name, value] : fields.items()) {
        text += (isFirst ? "" : ", ") + name + " to " + encodeJson(value);
        isFirst = false;
    }
    return text + ".";
}

std::string failText(const FailPorts& action)
{
    std::string text;
    for (const FailPort& port : action.ports) {
        text += text.empty() ? "" : " ";
        if (port.faults.empty()) {
            text += "Nothing fails any longer in the " + port.port + ".";
            continue;
        }
        text += "From now on a fault is set in the " + port.port + ":";
        for (const FailPort::Fault& fault : port.faults) {
            text += (text.back() == ':' ? " " : ", ") + fault.name;
            text += fault.times < 0    ? ""
                    : fault.times == 1 ? " (once)"
                                       : " (" + std::to_string(fault.times) + " times)";
        }
        text += ".";
    }
    return text;
}

std::string keychainText(const ChangeKeychain& action)
{
    std::string text;
    if (action.dataProtection) {
        text += " The data protection keychain now " + std::string{accessText(*action.dataProtection)} + ".";
    }
    if (action.legacy) {
        text += " The login keychain now " + std::string{accessText(*action.legacy)} + ".";
    }
    text += action.fail ? " " + failText(FailPorts{{*action.fail}}) : "";
    return text.substr(1);
}

std::optional<std::string> plainText(PlainAction action)
{
    switch (action) {
    case PlainAction::arm:
        return "The owner arms Sentrel.";
    case PlainAction::disarm:
        return "The owner disarms Sentrel.";
    case PlainAction::stopAlarm:
        return "The owner stops the alarm.";
    case PlainAction::screensSleep:
        return "The screen goes dark.";
    case PlainAction::refresh:
        return "The owner refreshes the list of alerts.";
    default:
        return std::nullopt;
    }
}

struct ActionDescriber {
    const std::function<std::string(std::uint32_t)>& deviceName;

    std::optional<std::string> operator()(PlainAction action) const { return plainText(action); }
    std::optional<std::string> operator()(const MoveMachine& move) const
    {
        return "The accelerometer reads " + tenths(move.x) + ", " + tenths(move.y) + " and " + tenths(move.z) + " g.";
    }
    std::optional<std::string> operator()(const PlayRecording& action) const
    {
        return "The Mac moves as recorded in " + action.name + ".";
    }
    std::optional<std::string> operator()(const RestMachine& action) const
    {
        return action.isResting ? "The Mac lies still; its accelerometer delivers samples."
                                : "The accelerometer falls silent.";
    }
    std::optional<std::string> operator()(const ChangeSettings& action) const { return settingsText(action.fields); }
    std::optional<std::string> operator()(const RemoveAudioDevice& action) const
    {
        return deviceName(action.device) + " disappears.";
    }
    std::optional<std::string> operator()(const FailPorts& action) const { return failText(action); }
    std::optional<std::string> operator()(const ChangeCamera& action) const { return cameraText(action); }
    std::optional<std::string> operator()(const ChangeKeychain& action) const { return keychainText(action); }
    std::optional<std::string> operator()(const AnswerLogin& action) const
    {
        return std::string{loginText(action.answer)};
    }
    std::optional<std::string> operator()(const TypePasscode& action) const
    {
        return "Somebody types “" + action.passcode + "” on the lock screen.";
    }
    template <class Other> std::optional<std::string> operator()(const Other& action) const
    {
        if constexpr (requires { describe(action); }) {
            return describe(action);
        } else {
            return std::nullopt;
        }
    }
};

} // namespace

std::string percent(double level)
{
    return std::to_string(std::lround(level * 100.0)) + " %";
}

std::string describe(const Mac& mac)
{
    const std::string product = mac.productName.value_or(mac.model);
    std::string text = (product.starts_with('i') ? "An " : "A ") + product; // an iMac
    text += mac.localizedName ? " called “" + *mac.localizedName + "” " : " without a name ";
    text += powerText(mac.power);
    text += lidText(mac.lid);
    text += mac.accelerometer == Mac::Accelerometer::absent ? ", without an accelerometer. " : ". ";
    return text + soundText(mac) + musicText(mac) + camerasText(mac) + displaysText(mac) + passcodeText(mac) +
           accountText(mac.iCloud);
}

std::optional<std::string> describe(const Action& action, const std::function<std::string(std::uint32_t)>& deviceName)
{
    return std::visit(ActionDescriber{deviceName}, action);
}

std::string reasonTitle(std::string_view rawValue)
{
    EnglishTexts english;
    const auto reason = triggerReason(rawValue);
    return reason ? title(*reason, english) : std::string{rawValue};
}

} // namespace sentrel::simulation
