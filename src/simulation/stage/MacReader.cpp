#include "simulation/stage/MacReader.hpp"

#include "simulation/mac/language/IcuCalendar.hpp"
#include "simulation/stage/MacWords.hpp"

#include <algorithm>

namespace sentrel::simulation {

namespace {

using Mac = MacDescription;
using type::about;
using type::orNone;
using type::word;

/// A text from an open list, with examples for the message, such as "'language' must be one such as de".
ValueType<std::string> listed(bool (*isListed)(const std::string&), std::string examples)
{
    auto type = type::text();
    type.read = [isListed, examples = std::move(examples)](auto& value, auto what, auto&) {
        std::string text = readText(value, what);
        if (!isListed(text)) {
            throw SourceFault(value.line, std::string{what} + " must be a known one, such as " + examples + ", not " +
                                              inQuotes(text));
        }
        return text;
    };
    return type;
}

/// Becomes part of paths and must not lead out of the Mac's disk.
ValueType<std::string> bundleIdentifierType()
{
    auto type = type::text();
    type.read = [](auto& value, auto what, auto&) {
        constexpr std::string_view permitted = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-";
        std::string text = readText(value, what);
        if (text.find_first_not_of(permitted) != std::string::npos ||
            text.find_first_not_of('.') == std::string::npos) {
            throw SourceFault(value.line, "'bundleIdentifier' may contain only letters, digits, '.' and '-', unlike " +
                                              inQuotes(text));
        }
        return text;
    };
    return type;
}

ValueType<std::filesystem::path> folderType()
{
    return {[](auto& value, auto what, auto& context) {
                const auto folder = readPath(value, "the folder", context);
                std::error_code error;
                if (!std::filesystem::is_directory(folder, error)) {
                    throw SourceFault(value.line,
                                      std::string{what} + " must be a folder, and " + inQuotes(value.text) + " is not");
                }
                return folder;
            },
            type::text().schema};
}

/// A Mac that mentions iCloud has an account unless it says otherwise.
CloudChange withAccount(CloudChange cloud)
{
    if (!cloud.account && !cloud.user) {
        cloud.account = ports::CloudAccountStatus::available;
    }
    return cloud;
}

const Fields<Mac>& macFields()
{
    static const Fields<Mac> fields{
        field("model", &Mac::model, about("hardware model", type::text())),
        field("productName", &Mac::productName, about("the firmware's product name", orNone(type::text()))),
        field("localizedName", &Mac::localizedName, about("the computer's name", orNone(type::text()))),
        field("language", &Mac::language,
              about("language and region of the user", listed(IcuCalendar::isLocale, "de, fr_CA or zh-Hans"))),
        field("timeZone", &Mac::timeZone,
              about("a name of the time zone database", listed(IcuCalendar::isTimeZone, "UTC or Europe/Paris"))),
        field("power", &Mac::power, word("power", powerWords)),
        field("lid", &Mac::lid, word("lid", lidWords)),
        field("accelerometer", &Mac::accelerometer, word("accelerometer", accelerometerWords)),
        field("audio", &Mac::audio, audioDevicesType()),
        field("defaultOutput", &Mac::defaultOutput, about("id of an audio device", orNone(type::audioDevice()))),
        field("music", &Mac::music, word("music", musicWords)),
        field("automationConsent", &Mac::automationConsent,
              about("whether Sentrel may control Music", word("consent", consentWords))),
        field("bundleIdentifier", &Mac::bundleIdentifier,
              about("none for an unbundled program", orNone(bundleIdentifierType()))),
        field("displays", &Mac::displays, displaysType()),
        field("camera", &Mac::camera, cameraType()),
        field("icloud", &Mac::iCloud, type::made(cloudType(), withAccount)),
        field("login", &Mac::login, about("answer to the login panel", word("login", loginWords))),
        field("passcode", &Mac::passcode, about("the unlock passcode that is set", type::text())),
        field("files", &Mac::files,
              about("folder with \"Application Support\" and \"Preferences\" to start with", folderType())),
    };
    return fields;
}

bool hasDevice(const Mac& mac, std::uint32_t id)
{
    return std::ranges::find(mac.audio, id, &AudioDevice::id) != mac.audio.end();
}

/// Checks the default output, or settles one that is not given.
void settleDefaultOutput(Mac& mac, const YamlValue& value)
{
    if (mac.defaultOutput && hasDevice(mac, *mac.defaultOutput)) {
        return;
    }
    const auto key = std::ranges::find(value.keys, "defaultOutput", &YamlValue::text);
    if (key == value.keys.end()) {
        mac.defaultOutput = mac.audio.empty() ? std::nullopt : std::optional{mac.audio.front().id};
    } else if (mac.defaultOutput) {
        throw SourceFault(key->line, "'defaultOutput' is " + std::to_string(*mac.defaultOutput) +
                                         ", but no audio device has this id");
    }
}

} // namespace

ValueType<Mac> macType()
{
    return {[](auto& value, auto what, auto& context) {
                Mac mac;
                readFields(value, what, macFields(), mac, context);
                settleDefaultOutput(mac, value);
                return mac;
            },
            schemaOf(macFields())};
}

std::vector<std::string_view> macNames()
{
    std::vector<std::string_view> names;
    for (const auto& field : macFields()) {
        names.push_back(field.key);
    }
    return names;
}

ValueType<std::size_t> displaysType()
{
    constexpr std::uint32_t mostDisplays = 16;
    return type::called("the number of displays", type::made(type::whole(0, mostDisplays),
                                                             [](std::uint32_t count) { return std::size_t{count}; }));
}

} // namespace sentrel::simulation
