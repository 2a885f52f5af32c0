#include "simulation/stage/ExpectationReader.hpp"

#include "core/TriggerReason.hpp"
#include "simulation/stage/SettingsReader.hpp"
#include "simulation/stage/ValueReader.hpp"

#include <algorithm>
#include <limits>
#include <string>

namespace sentrel::simulation {

namespace {

/// A JPEG file's brightness is known no more precisely than this.
constexpr double brightnessTolerance = 0.01;

/// A key that can be expected, and the reader of its value.
struct ExpectationRow {
    std::string_view key;
    Json (*read)(const YamlValue& value);
    double tolerance = numberTolerance;
};

template <std::size_t Count>
void readRows(const YamlValue& map, std::string_view what, const std::array<ExpectationRow, Count>& rows,
              const auto& found)
{
    requireMap(map, what);
    std::array<std::string_view, Count> keys;
    for (std::size_t i = 0; i < Count; ++i) {
        keys[i] = rows[i].key;
    }
    KeyChecker checker{keys, what};
    for (std::size_t i = 0; i < map.keys.size(); ++i) {
        const ExpectationRow& row = rows[checker.placeOf(map.keys[i])];
        found(map.keys[i], row, row.read(map.items[i]));
    }
}

template <std::size_t Count>
Json readObject(const YamlValue& map, std::string_view what, const std::array<ExpectationRow, Count>& rows)
{
    Json object = Json::object();
    readRows(map, what, rows,
             [&](const YamlValue& key, const ExpectationRow&, Json value) { object[key.text] = std::move(value); });
    return object;
}

template <std::size_t Count>
Json readNullableObject(const YamlValue& map, std::string_view what, const std::array<ExpectationRow, Count>& rows)
{
    return map.isNull() ? Json{} : readObject(map, what, rows);
}

Json flag(const YamlValue& value)
{
    return readFlag(value, "what is expected here");
}

Json text(const YamlValue& value)
{
    return readText(value, "what is expected here");
}

Json textOrNull(const YamlValue& value)
{
    return value.isNull() ? Json{} : text(value);
}

/// Text; an empty one must be in quotes.
Json messageOrNull(const YamlValue& value)
{
    const bool isEmpty = value.kind == YamlValue::Kind::quoted && value.text.empty();
    return isEmpty ? Json("") : textOrNull(value);
}

Json count(const YamlValue& value)
{
    return readWhole(value, "a count", 0, std::numeric_limits<std::uint32_t>::max());
}

Json countOrNull(const YamlValue& value)
{
    return value.isNull() ? Json{} : count(value);
}

Json level(const YamlValue& value)
{
    return readNumber(value, "a volume", 0.0, 1.0);
}

Json brightness(const YamlValue& value)
{
    return readNumber(value, "a brightness", 0.0, 1.0);
}

Json deviceOrNull(const YamlValue& value)
{
    const auto device = readOptionalDevice(value);
    return device ? Json(*device) : Json();
}

Json reason(const YamlValue& value)
{
    std::array<std::string_view, allTriggerReasons.size()> words;
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = rawValue(allTriggerReasons[i]);
    }
    return words[readChoice(value, "reason", words)];
}

Json reasonOrNull(const YamlValue& value)
{
    return value.isNull() ? Json{} : reason(value);
}

template <Json (*readItem)(const YamlValue&)> Json list(const YamlValue& value)
{
    requireList(value, "what is expected here");
    Json items = Json::array();
    for (const YamlValue& item : value.items) {
        items.push_back(readItem(item));
    }
    return items;
}

template <const auto& words> Json choice(const YamlValue& value)
{
    return words[readChoice(value, "word", words)];
}

constexpr std::array<std::string_view, 2> soundModes{"tone", "beep"};
constexpr std::array<std::string_view, 3> coverStates{"hidden", "shown", "locked-out"};
constexpr std::array<std::string_view, 2> sessionStates{"on", "off"};
constexpr std::array<std::string_view, 3> musicStates{"playing", "paused", "absent"};

constexpr std::array<ExpectationRow, 4> alertRows{
    {{"reason", reason}, {"deviceName", text}, {"photo", flag}, {"pendingUpload", flag}}};
constexpr std::array<ExpectationRow, 3> soundRows{
    {{"mode", choice<soundModes>}, {"device", deviceOrNull}, {"volume", level}}};
constexpr std::array<ExpectationRow, 3> photoRows{
    {{"width", countOrNull}, {"height", countOrNull}, {"brightness", brightness}}};
constexpr std::array<ExpectationRow, 2> deviceRows{{{"volume", level}, {"muted", flag}}};

/// A section's name; those of months and years include which one.
Json section(const YamlValue& value)
{
    static constexpr std::array<std::string_view, 6> words{"today",      "yesterday", "this-week",
                                                           "this-month", "month-",    "year-"};
    std::string id = readText(value, "a section");
    const bool isKnown = std::ranges::find(words, id) != words.end();
    if (!isKnown && !id.starts_with("month-") && !id.starts_with("year-")) {
        throw SourceFault(value.line, unknownWord("section", id, words));
    }
    return id;
}

template <const auto& rows> Json item(const YamlValue& value)
{
    return readObject(value, "an item of the list", rows);
}

constexpr std::array<std::string_view, 3> storageWords{"cloud", "localMac", "pendingUpload"};
constexpr std::array<ExpectationRow, 2> listedAlertRows{{{"reason", reason}, {"storage", choice<storageWords>}}};
constexpr std::array<ExpectationRow, 2> listedMacRows{{{"deviceName", text}, {"isArmed", flag}}};
constexpr std::array<ExpectationRow, 3> phoneRows{
    {{"alerts", count}, {"notifications", count}, {"macs", list<item<listedMacRows>>}}};
constexpr std::array<ExpectationRow, 3> cloudRows{
    {{"isAvailable", flag}, {"isReachable", flag}, {"lastSyncError", textOrNull}}};

Json lastAlert(const YamlValue& value)
{
    return readNullableObject(value, "'lastAlert'", alertRows);
}

Json photo(const YamlValue& value)
{
    return readNullableObject(value, "'photo'", photoRows);
}

Json sound(const YamlValue& value)
{
    return readNullableObject(value, "'sound'", soundRows);
}

Json phone(const YamlValue& value)
{
    return readNullableObject(value, "'phone'", phoneRows);
}

Json cloudState(const YamlValue& value)
{
    return readNullableObject(value, "'icloud'", cloudRows);
}

/// Devices by their numbers; null for one that must not be there.
Json devices(const YamlValue& value)
{
    refuseDuplicates(value, "'devices'");
    Json object = Json::object();
    for (std::size_t i = 0; i < value.keys.size(); ++i) {
        const std::string id = std::to_string(readDevice(value.keys[i]));
        object[id] = readNullableObject(value.items[i], "an audio device", deviceRows);
    }
    return object;
}

/// Some of a window's texts, in their order; or a map of texts present and texts absent.
Json someTexts(const YamlValue& value)
{
    static constexpr std::array<ExpectationRow, 2> rows{{{containedItems, list<text>}, {absentItems, list<text>}}};
    return value.isMap() ? readObject(value, "'texts'", rows) : Json{{containedItems, list<text>(value)}};
}

Json listOrNull(const YamlValue& value)
{
    return value.isNull() ? Json{} : list<text>(value);
}

Json number(const YamlValue& value)
{
    return readNumber(value, "a number of points");
}

constexpr std::array<std::string_view, 2> icons{"MenuBarIcon", "MenuBarIconArmed"};
constexpr std::array<std::string_view, 2> policies{"accessory", "regular"};
constexpr std::array<std::string_view, 3> quitStates{"running", "asked", "quit"};
constexpr std::array<ExpectationRow, 3> windowRows{{{"visible", flag}, {"size", list<number>}, {"texts", someTexts}}};

Json shellWindow(const YamlValue& value)
{
    return readObject(value, "a window", windowRows);
}

constexpr std::array<ExpectationRow, 2> windowsRows{{{"main", shellWindow}, {"alerts", shellWindow}}};

Json windows(const YamlValue& value)
{
    return readObject(value, "'window'", windowsRows);
}

template <const auto& words> Json choiceOrNull(const YamlValue& value)
{
    return value.isNull() ? Json{} : choice<words>(value);
}

constexpr std::array<ExpectationRow, 38> expectationRows{{
    {"isArmed", flag},
    {"isAlarmActive", flag},
    {"statusMessage", text},
    {"lastTrigger", reasonOrNull},
    {"lastError", textOrNull},
    {"cameraWarning", textOrNull},
    {"motionWarning", textOrNull},
    {"alerts", count},
    {"lastAlert", lastAlert},
    {"alertReasons", list<reason>},
    {"sound", sound},
    {"devices", devices},
    {"defaultOutput", deviceOrNull},
    {"music", choice<musicStates>},
    {"assertions", list<text>},
    {"settings", readSettings},
    {"photo", photo, brightnessTolerance},
    {"cameraSession", choice<sessionStates>},
    {"loginsAsked", count},
    {"cover", choice<coverStates>},
    {"coverMessage", messageOrNull},
    {"coverWindows", count},
    {"icon", choiceOrNull<icons>},
    {"menu", listOrNull},
    {"window", windows},
    {"dialogs", list<text>},
    {"activationPolicy", choiceOrNull<policies>},
    {"quit", choice<quitStates>},
    {"cloudAlerts", count},
    {"phone", phone},
    {"pendingUploads", count},
    {"pendingDeletions", count},
    {"alertRows", list<item<listedAlertRows>>},
    {"sections", list<section>},
    {"infoMessage", textOrNull},
    {"errorMessage", textOrNull},
    {"icloud", cloudState},
    {"syncError", textOrNull},
}};

} // namespace

std::vector<std::string_view> expectationNames()
{
    std::vector<std::string_view> names;
    for (const ExpectationRow& row : expectationRows) {
        names.push_back(row.key);
    }
    return names;
}

std::vector<Expectation> readExpectations(const YamlValue& value)
{
    std::vector<Expectation> expectations;
    readRows(value, "'expect'", expectationRows, [&](const YamlValue& key, const ExpectationRow& row, Json expected) {
        expectations.push_back({key.text, std::move(expected), key.line, row.tolerance});
    });
    if (expectations.empty()) {
        throw SourceFault(value.line, "'expect' expects nothing: give it at least one key");
    }
    return expectations;
}

} // namespace sentrel::simulation
