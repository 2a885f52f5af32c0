#include "simulation/stage/ExpectationReader.hpp"

#include "core/TriggerReason.hpp"
#include "simulation/stage/ExpectedState.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "simulation/stage/MacWords.hpp"
#include "simulation/stage/SettingsReader.hpp"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>

namespace sentrel::simulation {

namespace {

using JsonType = ValueType<Json>;
using JsonFields = Fields<Json>;

/// A JPEG file's brightness is known no more precisely than this.
constexpr double brightnessTolerance = 0.01;

constexpr std::string_view expectedHere = "what is expected here";

template <class T> JsonType json(ValueType<T> type)
{
    return type::made(std::move(type), [](T value) { return Json(std::move(value)); });
}

JsonType flag()
{
    return json(type::called(std::string{expectedHere}, type::flag()));
}

JsonType text()
{
    return json(type::called(std::string{expectedHere}, type::text()));
}

JsonType count()
{
    return json(type::called("a count", type::whole(0, std::numeric_limits<std::uint32_t>::max())));
}

JsonType level(std::string what)
{
    return json(type::called(std::move(what), type::number(0.0, 1.0)));
}

JsonType choice(std::vector<std::string_view> words)
{
    return json(type::oneOf("word", std::move(words)));
}

JsonType orNull(JsonType type)
{
    Json schema{{"anyOf", {{{"type", "null"}}, type.schema}}};
    return {[read = std::move(type.read)](auto& value, auto what, auto& context) {
                return value.isNull() ? Json{} : read(value, what, context);
            },
            std::move(schema)};
}

JsonType deviceOrNull()
{
    return {[](auto& value, auto, auto&) {
                const auto device = readOptionalDevice(value);
                return device ? Json(*device) : Json{};
            },
            type::orNone(type::audioDevice()).schema};
}

JsonType reason()
{
    std::vector<std::string_view> words;
    for (const TriggerReason each : allTriggerReasons) {
        words.push_back(rawValue(each));
    }
    return json(type::oneOf("reason", std::move(words)));
}

JsonType list(JsonType item)
{
    return json(type::called(std::string{expectedHere}, type::listOf(std::move(item))));
}

Field<Json> member(std::string_view key, JsonType type)
{
    return {key,
            [key, read = std::move(type.read)](Json& into, const YamlValue& value, const ReadContext& context) {
                into[std::string{key}] = read(value, inQuotes(key), context);
            },
            std::move(type.schema)};
}

/// Some members of an object.
JsonType object(JsonFields fields)
{
    Json schema = schemaOf(fields);
    return {[fields = std::move(fields)](auto& value, auto what, auto& context) {
                Json object = Json::object();
                readFields(value, what, fields, object, context);
                return object;
            },
            std::move(schema)};
}

JsonType listItem(JsonFields fields)
{
    return type::called("an item of the list", object(std::move(fields)));
}

/// Text; an empty one must be in quotes.
JsonType messageOrNull()
{
    return orNull(json(type::called(std::string{expectedHere}, type::anyText())));
}

/// A section's name; those of months and years include which one.
JsonType section()
{
    return {[](auto& value, auto, auto&) {
                static constexpr std::array<std::string_view, 6> words{"today",      "yesterday", "this-week",
                                                                       "this-month", "month-",    "year-"};
                const std::string id = readText(value, "a section");
                const bool isKnown = std::ranges::find(words, id) != words.end();
                if (!isKnown && !id.starts_with("month-") && !id.starts_with("year-")) {
                    throw SourceFault(value.line, unknownWord("section", id, words));
                }
                return Json(id);
            },
            {{"type", "string"}, {"pattern", "^(today|yesterday|this-week|this-month|month-.*|year-.*)$"}}};
}

/// Devices by their numbers; null for one that must not be there.
JsonType devices()
{
    const auto device = orNull(type::called("an audio device", object({
                                                                   member("volume", level("a volume")),
                                                                   member("muted", flag()),
                                                               })));
    return {[read = device.read](auto& value, auto what, auto& context) {
                refuseDuplicates(value, what);
                Json object = Json::object();
                for (std::size_t i = 0; i < value.keys.size(); ++i) {
                    object[std::to_string(readDevice(value.keys[i]))] = read(value.items[i], what, context);
                }
                return object;
            },
            {{"type", "object"}, {"additionalProperties", device.schema}}};
}

/// Some of a window's texts, in their order; or a map of texts present and texts absent.
JsonType someTexts()
{
    auto present = type::made(list(text()), [](Json texts) { return Json{{containedItems, std::move(texts)}}; });
    return type::either(object({member(containedItems, list(text())), member(absentItems, list(text()))}),
                        std::move(present));
}

JsonType shellWindow()
{
    return type::called("a window", object({
                                        member("visible", flag()),
                                        member("size", list(json(type::called("a number of points", type::number())))),
                                        member("texts", someTexts()),
                                    }));
}

Json jsonOf(const std::optional<std::string>& text)
{
    return text ? Json(*text) : Json{};
}

/// A key that can be expected: how its value is read, and how the state is observed.
struct ExpectationRow {
    std::string_view key;
    std::string_view meaning;
    JsonType type;
    std::function<Json(MacSession& session, const MacState& state)> observe;
    double tolerance = numberTolerance;
};

/// State that the devices show.
template <class Observe>
ExpectationRow shown(std::string_view key, std::string_view meaning, JsonType type, Observe observe)
{
    return {key, meaning, std::move(type), [observe](MacSession& session, const MacState& state) -> Json {
                if constexpr (std::is_invocable_v<Observe, const MacState&>) {
                    return observe(state);
                } else if constexpr (std::is_invocable_v<Observe, MacSession&, const MacState&>) {
                    return observe(session, state);
                } else {
                    return observe(session);
                }
            }};
}

/// State of the product; `otherwise` while it isn't running.
template <class Observe>
ExpectationRow told(std::string_view key, std::string_view meaning, JsonType type, Observe observe, Json otherwise = {})
{
    return {key, meaning, std::move(type),
            [observe, otherwise = std::move(otherwise)](MacSession& session, const MacState&) -> Json {
                return session.app() == nullptr ? otherwise : observe(*session.app());
            }};
}

/// A notice of the product, or null.
template <class Observe> ExpectationRow notice(std::string_view key, std::string_view meaning, Observe observe)
{
    return told(key, meaning, orNull(text()), [observe](SentrelApp& app) { return jsonOf(observe(app).get()); });
}

/// Reads from the devices.
template <class Read> auto ofMac(Read read)
{
    return [read](MacSession& session) -> Json { return read(session.mac()); };
}

std::vector<ExpectationRow> alarmRows()
{
    return {
        shown("isArmed", "the menu bar shows Sentrel as armed", flag(), [](const MacState& s) { return s.isArmed(); }),
        shown("isAlarmActive", "the menu offers to stop the alarm", flag(),
              [](const MacState& s) { return s.isAlarmActive(); }),
        told("statusMessage", "the status line", text(),
             [](SentrelApp& app) { return Json(app.coordinator().statusMessage.get()); }),
        told("lastTrigger", "reason of the last trigger", orNull(reason()),
             [](SentrelApp& app) {
                 const auto& last = app.coordinator().lastTrigger.get();
                 return last ? Json(rawValue(*last)) : Json{};
             }),
        notice("lastError", "the error notice", [](SentrelApp& app) -> auto& { return app.coordinator().lastError; }),
        notice("cameraWarning", "the notice about the camera",
               [](SentrelApp& app) -> auto& { return app.coordinator().cameraWarning; }),
        notice("motionWarning", "the notice about the motion sensor",
               [](SentrelApp& app) -> auto& { return app.coordinator().motionWarning; }),
        shown("settings", "the settings on the disk", settingsType(), [](const MacState& s) { return s.settings(); }),
    };
}

std::vector<ExpectationRow> storedAlertRows()
{
    ExpectationRow photo = shown("photo", "measurements of the last alert's photo",
                                 orNull(object({member("width", orNull(count())), member("height", orNull(count())),
                                                member("brightness", level("a brightness"))})),
                                 [](const MacState& state) { return state.lastPhoto(); });
    photo.tolerance = brightnessTolerance;
    return {
        shown("alerts", "number of alerts on the disk", count(), [](const MacState& s) { return s.alerts().size(); }),
        shown("lastAlert", "the last alert on the disk",
              orNull(object({member("reason", reason()), member("deviceName", text()), member("photo", flag()),
                             member("pendingUpload", flag())})),
              lastAlertOf),
        shown("alertReasons", "reasons of the alerts on the disk, oldest first", list(reason()), alertReasonsOf),
        std::move(photo),
        shown("pendingUploads", "number of alerts on the disk that await their upload", count(),
              [](const MacState& s) { return std::ranges::count(s.alerts(), true, &StoredAlert::pendingUpload); }),
        shown("pendingDeletions", "number of deletions that are owed to iCloud", count(),
              [](const MacState& s) { return s.pendingDeletions(); }),
    };
}

std::vector<ExpectationRow> hardwareRows()
{
    return {
        shown("sound", "the alarm that is heard",
              orNull(object({member("mode", choice({"tone", "beep"})), member("device", deviceOrNull()),
                             member("volume", level("a volume"))})),
              [](const MacState& s) { return s.sound(); }),
        shown("devices", "audio devices by number", devices(), devicesOf),
        shown("defaultOutput", "id of the default output", deviceOrNull(),
              [](const MacState& s) {
                  const auto device = s.defaultOutput();
                  return device ? Json(*device) : Json{};
              }),
        shown("music", "playback of the Music app", choice({"playing", "paused", "absent"}),
              [](const MacState& s) { return wordFor(musicWords, s.music()); }),
        shown("assertions", "names of the power assertions held", list(text()),
              ofMac([](SimulatedMac& m) { return m.assertions.held(); })),
        shown("cameraSession", "whether the camera runs", choice({"on", "off"}),
              [](const MacState& s) { return s.isCameraRunning() ? "on" : "off"; }),
        shown("loginsAsked", "how often the login was asked", count(),
              ofMac([](SimulatedMac& m) { return m.login.reasonsAsked().size(); })),
    };
}

std::vector<ExpectationRow> screenRows()
{
    return {
        shown("cover", "the lock screen", choice({"hidden", "shown", "locked-out"}), coverWordOf),
        shown("coverMessage", "the message on the lock screen", messageOrNull(),
              [](const MacState& s) { return jsonOf(s.coverMessage()); }),
        shown("coverWindows", "number of displays that the lock screen covers", count(),
              [](const MacState& s) { return s.covers().size(); }),
        shown("icon", "the image in the menu bar", orNull(choice({"MenuBarIcon", "MenuBarIconArmed"})), iconOf),
        shown("menu", "the texts of the open menu", orNull(list(text())),
              [](const MacState& s) {
                  const auto texts = s.menu();
                  return texts ? Json(*texts) : Json{};
              }),
        shown("window", "the windows", object({member("main", shellWindow()), member("alerts", shellWindow())}),
              [](const MacState& s) {
                  return Json{{"main", s.window(mainWindow.identifier)}, {"alerts", s.window(alertsWindow.identifier)}};
              }),
        shown("dialogs", "texts of the open questions and notices", list(text()),
              [](const MacState& s) { return s.dialogs(); }),
        shown("activationPolicy", "whether Sentrel stands in the Dock", orNull(choice({"accessory", "regular"})),
              activationPolicyOf),
        shown("quit", "whether Sentrel is quitting", choice({"running", "asked", "quit"}), quitWordOf),
    };
}

std::vector<ExpectationRow> listAndCloudRows()
{
    return {
        shown("cloudAlerts", "number of alerts in iCloud", count(), [](const MacState& s) { return s.cloudAlerts(); }),
        shown(
            "phone", "what the phone shows",
            orNull(object({member("alerts", count()), member("notifications", count()),
                           member("macs", list(listItem({member("deviceName", text()), member("isArmed", flag())})))})),
            phoneOf),
        told("alertRows", "the list of alerts",
             list(listItem(
                 {member("reason", reason()), member("storage", choice({"cloud", "localMac", "pendingUpload"}))})),
             alertRowsOf, Json::array()),
        told("sections", "the sections of the list", list(section()), sectionsOf, Json::array()),
        notice("infoMessage", "the list's notice",
               [](SentrelApp& app) -> auto& { return app.alertsService().infoMessage; }),
        notice("errorMessage", "the list's error",
               [](SentrelApp& app) -> auto& { return app.alertsService().errorMessage; }),
        told("icloud", "Sentrel's view of iCloud",
             orNull(object({member("isAvailable", flag()), member("isReachable", flag()),
                            member("lastSyncError", orNull(text()))})),
             cloudViewOf),
        notice("syncError", "the error of the last publication",
               [](SentrelApp& app) -> auto& { return app.presence().syncError; }),
    };
}

const std::vector<ExpectationRow>& rows()
{
    static const std::vector<ExpectationRow> all = [] {
        std::vector<ExpectationRow> together;
        for (auto* const subject : {alarmRows, storedAlertRows, hardwareRows, screenRows, listAndCloudRows}) {
            std::ranges::move(subject(), std::back_inserter(together));
        }
        return together;
    }();
    return all;
}

Fields<std::vector<Expectation>> expectationFields()
{
    Fields<std::vector<Expectation>> fields;
    for (const ExpectationRow& row : rows()) {
        fields.push_back({row.key,
                          [&row](std::vector<Expectation>& into, const YamlValue& value, const ReadContext& context) {
                              Json expected = row.type.read(value, inQuotes(row.key), context);
                              into.push_back({std::string{row.key}, std::move(expected), 0, row.tolerance});
                          },
                          type::about(row.meaning, row.type).schema});
    }
    return fields;
}

} // namespace

ValueType<std::vector<Expectation>> expectationsType()
{
    const auto fields = expectationFields();
    return {[fields](auto& value, auto what, auto& context) {
                std::vector<Expectation> expectations;
                readFields(value, what, fields, expectations, context);
                for (std::size_t i = 0; i < expectations.size(); ++i) {
                    expectations[i].line = value.keys[i].line;
                }
                if (expectations.empty()) {
                    throw SourceFault(value.line, "'expect' is empty: it needs at least one key");
                }
                return expectations;
            },
            schemaOf(fields)};
}

std::vector<std::string_view> expectationNames()
{
    std::vector<std::string_view> names;
    for (const ExpectationRow& row : rows()) {
        names.push_back(row.key);
    }
    return names;
}

Json stateOf(MacSession& session)
{
    const MacState mac{session};
    Json state = Json::object();
    for (const ExpectationRow& row : rows()) {
        state[std::string{row.key}] = row.observe(session, mac);
    }
    return state;
}

} // namespace sentrel::simulation
