#include "simulation/stage/MacReader.hpp"

#include "simulation/mac/language/IcuCalendar.hpp"
#include "simulation/stage/AudioReader.hpp"
#include "simulation/stage/CameraReader.hpp"
#include "simulation/stage/CloudReader.hpp"

#include <algorithm>

namespace sentrel::simulation {

namespace {

using Mac = MacDescription;

constexpr std::array<Word<Mac::Power>, 3> powers{
    {{"ac", Mac::Power::ac}, {"battery", Mac::Power::battery}, {"unknown", Mac::Power::unknown}}};
constexpr std::array<Word<Mac::Lid>, 3> lids{
    {{"open", Mac::Lid::open}, {"closed", Mac::Lid::closed}, {"absent", Mac::Lid::absent}}};
constexpr std::array<Word<Mac::Accelerometer>, 3> accelerometers{{{"present", Mac::Accelerometer::present},
                                                                  {"absent", Mac::Accelerometer::absent},
                                                                  {"resting", Mac::Accelerometer::resting}}};
constexpr std::array<Word<Mac::Music>, 3> musics{
    {{"playing", Mac::Music::playing}, {"paused", Mac::Music::paused}, {"absent", Mac::Music::absent}}};
constexpr std::array<Word<Mac::Consent>, 3> consents{{{"granted", Mac::Consent::granted},
                                                      {"denied", Mac::Consent::denied},
                                                      {"undetermined", Mac::Consent::undetermined}}};

constexpr std::array<Word<LoginAnswer>, 4> loginAnswers{{{"succeed", LoginAnswer::succeed},
                                                         {"fail", LoginAnswer::fail},
                                                         {"cancel", LoginAnswer::cancel},
                                                         {"unavailable", LoginAnswer::unavailable}}};

/// A description being read. References between keys are checked after all keys.
struct Draft {
    Mac mac;
    const YamlValue* defaultOutput = nullptr;
};

/// A text from an open list, with examples for the message, such as "'language' must be one such as de".
std::string readListed(const YamlValue& value, const std::string& key, bool (*isListed)(const std::string&),
                       const char* examples)
{
    std::string text = readText(value, key);
    if (!isListed(text)) {
        throw SourceFault(value.line,
                          key + " must be one such as " + examples + ", and " + inQuotes(text) + " is none");
    }
    return text;
}

/// A bundle identifier. It becomes part of paths and must not lead out of the Mac's disk.
std::optional<std::string> readBundleIdentifier(const YamlValue& value)
{
    constexpr std::string_view permitted = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-";
    auto identifier = readOptionalText(value, "'bundleIdentifier'");
    const bool isPlain = !identifier || (identifier->find_first_not_of(permitted) == std::string::npos &&
                                         identifier->find_first_not_of('.') != std::string::npos);
    if (!isPlain) {
        throw SourceFault(value.line, "'bundleIdentifier' must have letters, digits, '.' and '-' alone, unlike " +
                                          inQuotes(*identifier));
    }
    return identifier;
}

constexpr std::array<FieldRow<Draft>, 19> macFields{{
    {"model", [](auto& draft, auto& value, auto&) { draft.mac.model = readText(value, "'model'"); }},
    {"productName",
     [](auto& draft, auto& value, auto&) { draft.mac.productName = readOptionalText(value, "'productName'"); }},
    {"localizedName",
     [](auto& draft, auto& value, auto&) { draft.mac.localizedName = readOptionalText(value, "'localizedName'"); }},
    {"language",
     [](auto& draft, auto& value, auto&) {
         draft.mac.language = readListed(value, "'language'", IcuCalendar::isLocale, "de, fr_CA or zh-Hans");
     }},
    {"timeZone",
     [](auto& draft, auto& value, auto&) {
         draft.mac.timeZone = readListed(value, "'timeZone'", IcuCalendar::isTimeZone, "UTC or Europe/Paris");
     }},
    {"power", [](auto& draft, auto& value, auto&) { draft.mac.power = readPower(value); }},
    {"lid", [](auto& draft, auto& value, auto&) { draft.mac.lid = readWord(value, "lid", lids); }},
    {"accelerometer", [](auto& draft, auto& value,
                         auto&) { draft.mac.accelerometer = readWord(value, "accelerometer", accelerometers); }},
    {"audio", [](auto& draft, auto& value, auto& context) { draft.mac.audio = readAudioDevices(value, context); }},
    {"defaultOutput",
     [](auto& draft, auto& value, auto&) {
         draft.mac.defaultOutput = readOptionalDevice(value);
         draft.defaultOutput = &value;
     }},
    {"music", [](auto& draft, auto& value, auto&) { draft.mac.music = readWord(value, "music", musics); }},
    {"automationConsent",
     [](auto& draft, auto& value, auto&) { draft.mac.automationConsent = readWord(value, "consent", consents); }},
    {"bundleIdentifier",
     [](auto& draft, auto& value, auto&) { draft.mac.bundleIdentifier = readBundleIdentifier(value); }},
    {"displays", [](auto& draft, auto& value, auto&) { draft.mac.displays = readDisplayCount(value); }},
    {"camera", [](auto& draft, auto& value, auto& context) { draft.mac.camera = readCamera(value, context).change; }},
    {"icloud",
     [](auto& draft, auto& value, auto& context) {
         draft.mac.iCloud = readCloud(value, context).change;
         if (!draft.mac.iCloud.account && !draft.mac.iCloud.user) {
             draft.mac.iCloud.account = ports::CloudAccountStatus::available;
         }
     }},
    {"login", [](auto& draft, auto& value, auto&) { draft.mac.login = readLoginAnswer(value); }},
    {"passcode", [](auto& draft, auto& value, auto&) { draft.mac.passcode = readText(value, "'passcode'"); }},
    {"files",
     [](auto& draft, auto& value, auto& context) {
         const auto folder = readPath(value, "the folder", context);
         std::error_code error;
         if (!std::filesystem::is_directory(folder, error)) {
             throw SourceFault(value.line, "'files' must be a folder, and " + inQuotes(value.text) + " is none");
         }
         draft.mac.files = folder;
     }},
}};

bool hasDevice(const Mac& mac, std::uint32_t id)
{
    return std::ranges::any_of(mac.audio, [&](const auto& device) { return device.id == id; });
}

void settleDefaultOutput(Draft& draft)
{
    Mac& mac = draft.mac;
    if (mac.defaultOutput && hasDevice(mac, *mac.defaultOutput)) {
        return;
    }
    if (draft.defaultOutput == nullptr) {
        mac.defaultOutput = mac.audio.empty() ? std::nullopt : std::optional{mac.audio.front().id};
        return;
    }
    if (mac.defaultOutput) {
        throw SourceFault(draft.defaultOutput->line,
                          "'defaultOutput' is " + draft.defaultOutput->text + ", but no audio device has this id");
    }
}

} // namespace

Mac readMac(const YamlValue& value, const ReadContext& context)
{
    Draft draft;
    readFields(value, "'mac'", macFields, draft, context);
    settleDefaultOutput(draft);
    return draft.mac;
}

std::vector<std::string_view> macNames()
{
    std::vector<std::string_view> names;
    for (const auto& field : macFields) {
        names.push_back(field.key);
    }
    return names;
}

Mac::Power readPower(const YamlValue& value)
{
    return readWord(value, "power", powers);
}

std::size_t readDisplayCount(const YamlValue& value)
{
    constexpr std::uint32_t mostDisplays = 16;
    return readWhole(value, "the number of displays", 0, mostDisplays);
}

LoginAnswer readLoginAnswer(const YamlValue& value)
{
    return readWord(value, "login", loginAnswers);
}

} // namespace sentrel::simulation
