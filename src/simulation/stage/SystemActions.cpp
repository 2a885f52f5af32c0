#include "simulation/stage/Action.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacWords.hpp"
#include "simulation/stage/SettingsReader.hpp"
#include "simulation/stage/Wording.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>

// Actions on the product's process and settings, and answers of macOS.

namespace sentrel::simulation {

namespace {

using Access = SimulatedKeychain::Access;

/// A device of the simulated MacBook fails from now on, or is healed. Names are checked against the devices, before
/// the play begins.
struct FailingPort {
    struct Fault {
        std::string name;
        int times = -1; ///< negative: until healed
    };
    std::string port;
    std::vector<Fault> faults; ///< empty heals the port
};
using FailingPorts = std::vector<FailingPort>;

/// A fault, a list of them, a map from faults to times, or none.
std::vector<FailingPort::Fault> readFaults(const YamlValue& value)
{
    constexpr std::uint32_t mostTimes = 1'000'000;
    std::vector<FailingPort::Fault> faults;
    if (value.isMap()) {
        refuseDuplicates(value, "'fail'");
        for (std::size_t i = 0; i < value.keys.size(); ++i) {
            const auto times = readWhole(value.items[i], "how often it fails", 0, mostTimes);
            faults.push_back({value.keys[i].text, static_cast<int>(times)});
        }
    } else if (value.isList()) {
        for (const YamlValue& item : value.items) {
            faults.push_back({readText(item, "a fault")});
        }
    } else if (const auto name = readOptionalText(value, "a fault")) {
        faults.push_back({*name});
    }
    return faults;
}

Json faultsSchema()
{
    return {{"type", {"string", "null", "array", "object"}},
            {"items", {{"type", "string"}}},
            {"additionalProperties", {{"type", "integer"}, {"minimum", 0}}}};
}

ValueType<FailingPorts> failingPortsType()
{
    return {[](auto& value, auto what, auto&) {
                refuseDuplicates(value, what);
                FailingPorts ports;
                for (std::size_t i = 0; i < value.keys.size(); ++i) {
                    ports.push_back({value.keys[i].text, readFaults(value.items[i])});
                }
                if (ports.empty()) {
                    throw SourceFault(value.line, "'fail' needs a port, as in {fail: {PORT: FAULT}}");
                }
                return ports;
            },
            {{"type", "object"}, {"minProperties", 1}, {"additionalProperties", faultsSchema()}}};
}

FaultSwitches* switchesOf(MacSession& session, const std::string& port)
{
    for (const auto& [name, switches] : session.mac().faults()) {
        if (name == port) {
            return switches;
        }
    }
    return nullptr;
}

void failPorts(MacSession& session, const FailingPorts& ports)
{
    for (const FailingPort& failing : ports) {
        FaultSwitches* const switches = switchesOf(session, failing.port);
        if (switches == nullptr) {
            continue; // refused before the play began
        }
        if (failing.faults.empty()) {
            switches->clear();
        }
        for (const FailingPort::Fault& fault : failing.faults) {
            switches->set(fault.name, fault.times);
        }
    }
}

std::string unknownPort(MacSession& session, std::string_view port)
{
    std::vector<std::string_view> known;
    const auto all = session.mac().faults();
    for (const auto& [name, each] : all) {
        known.push_back(name);
    }
    return std::ranges::find(known, port) == known.end() ? unknownWord("port", port, known) : std::string{};
}

std::string unknownFault(MacSession& session, const FailingPorts& ports)
{
    for (const FailingPort& failing : ports) {
        const FaultSwitches* const switches = switchesOf(session, failing.port);
        if (switches == nullptr) {
            return unknownPort(session, failing.port);
        }
        const auto known = switches->names();
        for (const FailingPort::Fault& fault : failing.faults) {
            if (std::ranges::find(known, fault.name) == known.end()) {
                const std::vector<std::string_view> words{known.begin(), known.end()};
                return unknownWord("fault of " + failing.port, fault.name, words);
            }
        }
    }
    return {};
}

std::string tellFailures(const FailingPorts& ports)
{
    std::string text;
    for (const FailingPort& failing : ports) {
        text += text.empty() ? "" : " ";
        if (failing.faults.empty()) {
            text += "Nothing fails any longer in the " + failing.port + ".";
            continue;
        }
        text += "From now on a fault is set in the " + failing.port + ":";
        for (const FailingPort::Fault& fault : failing.faults) {
            text += (text.back() == ':' ? " " : ", ") + fault.name;
            text += fault.times < 0    ? ""
                    : fault.times == 1 ? " (once)"
                                       : " (" + std::to_string(fault.times) + " times)";
        }
        text += ".";
    }
    return text;
}

/// A fault of one call, or none: the calls that were not struck yet are healed.
ValueType<std::optional<CallFault>> plannedFaultType()
{
    constexpr std::uint32_t mostCalls = 1'000'000;
    return type::orNone(type::map(Fields<CallFault>{
        required(field("port", &CallFault::port, type::text())),
        field("operation", &CallFault::operation, type::text()),
        field("call", &CallFault::call, type::called("the number of the call", type::whole(1, mostCalls))),
        required(field("fate", &CallFault::fate, type::word("fate of a call", fateWords))),
    }));
}

void planFault(MacSession& session, const std::optional<CallFault>& fault)
{
    if (!fault) {
        session.plannedFaults().clear();
        session.mac().files.restorePower();
        return;
    }
    if (fault->fate == CallFault::Fate::losesPower) {
        // The disk remembers from now on which writes a power cut may lose.
        session.mac().files.cutPowerAfter(std::numeric_limits<std::uint64_t>::max());
    }
    session.plannedFaults().add(*fault);
}

std::string tellPlannedFault(const std::optional<CallFault>& fault)
{
    if (!fault) {
        return "No further call fails.";
    }
    return "Call " + std::to_string(fault->call) + " of " + fault->port +
           (fault->operation.empty() ? "" : " (" + fault->operation + ")") + " from now on " +
           std::string{nameOf(fault->fate)} + ".";
}

/// How far the wall clock is set ahead, or back if negative, in seconds.
ValueType<double> clockType()
{
    struct Move {
        Duration ahead{};
        Duration back{};
    };
    return type::made(
        type::map(Fields<Move>{field("ahead", &Move::ahead, type::span()), field("back", &Move::back, type::span())},
                  "{clock: {ahead: 1h}}"),
        [](const Move& move) { return toSeconds(move.ahead) - toSeconds(move.back); });
}

std::string tellClock(double seconds)
{
    return "The Mac's clock is set " + plainNumber(std::abs(seconds)) + " s " + (seconds < 0.0 ? "back." : "ahead.");
}

/// The keychains' answers from now on.
struct Keychain {
    std::optional<Access> dataProtection;
    std::optional<Access> legacy;
    FailingPorts fail; ///< faults of the port "keychain"
};

constexpr std::array<Word<Access>, 3> accessWords{
    {{"open", Access::open}, {"locked", Access::locked}, {"denied", Access::denied}}};

ValueType<Keychain> keychainType()
{
    const auto access = type::word("keychain access", accessWords);
    return type::map(
        Fields<Keychain>{
            field("dataProtection", &Keychain::dataProtection, access),
            field("legacy", &Keychain::legacy, access),
            {"fail", [](auto& keychain, auto& value, auto&) { keychain.fail = {{"keychain", readFaults(value)}}; },
             faultsSchema()},
        },
        "{keychain: {dataProtection: locked}}");
}

void changeKeychain(MacSession& session, const Keychain& change)
{
    SimulatedKeychain& keychain = session.mac().keychain;
    if (change.dataProtection) {
        keychain.setAccess(KeychainStore::dataProtection, *change.dataProtection);
    }
    if (change.legacy) {
        keychain.setAccess(KeychainStore::legacy, *change.legacy);
    }
    failPorts(session, change.fail);
}

std::string tellKeychain(const Keychain& change)
{
    const auto answer = [](Access access) {
        return access == Access::open ? "is open." : access == Access::locked ? "is locked." : "refuses Sentrel.";
    };
    std::string text;
    if (change.dataProtection) {
        text += std::string{" The data protection keychain now "} + answer(*change.dataProtection);
    }
    if (change.legacy) {
        text += std::string{" The login keychain now "} + answer(*change.legacy);
    }
    text += change.fail.empty() ? "" : " " + tellFailures(change.fail);
    return text.substr(1);
}

std::string tellSettings(const Json& fields)
{
    std::string text = "The owner sets ";
    bool isFirst = true;
    for (const auto& [name, value] : fields.items()) {
        text += (isFirst ? "" : ", ") + name + " to " + encodeJson(value);
        isFirst = false;
    }
    return text + ".";
}

std::string_view tellLogin(LoginAnswer answer)
{
    static constexpr std::array<Word<LoginAnswer>, 4> texts{{
        {"From now on the Mac login succeeds.", LoginAnswer::succeed},
        {"From now on the Mac login fails.", LoginAnswer::fail},
        {"From now on the login panel is cancelled.", LoginAnswer::cancel},
        {"From now on macOS can't ask for the Mac login.", LoginAnswer::unavailable},
    }};
    return wordFor(texts, answer);
}

void refuseLoginItems(MacSession& session, bool refuses)
{
    for (const char* const call : {"register", "unregister"}) {
        session.mac().loginItem.faults().set(call, refuses ? -1 : 0);
    }
}

/// `cancel`, or the name of a folder on the disk, which need not exist.
ValueType<std::optional<std::string>> savePanelType()
{
    return {[](auto& value, auto, auto&) -> std::optional<std::string> {
                if (value.kind == YamlValue::Kind::plain && value.text == "cancel") {
                    return std::nullopt;
                }
                const std::filesystem::path folder = readText(value, "a folder on the disk");
                if (folder.is_absolute() || std::ranges::find(folder, "..") != folder.end()) {
                    throw SourceFault(value.line,
                                      "a save panel's folder lies on the Mac's disk, as in {save-panel: Downloads}");
                }
                return folder.string();
            },
            type::text().schema};
}

void setArmed(MacSession& session, bool isArmed)
{
    session.changeSettings([isArmed](AlarmSettings& settings) { settings.isArmed = isArmed; });
}

} // namespace

std::vector<ActionRow> systemActions()
{
    static constexpr std::array<Word<bool>, 2> failWords{{{"ok", false}, {"fail", true}}};
    return {
        ActionRow::plain(
            "arm", "the owner arms Sentrel", [](auto& session) { setArmed(session, true); }, "The owner arms Sentrel."),
        ActionRow::plain(
            "disarm", "the owner disarms Sentrel", [](auto& session) { setArmed(session, false); },
            "The owner disarms Sentrel."),
        ActionRow::plain(
            "stop-alarm", "the owner stops the alarm", [](auto& session) { session.stopAlarm(); },
            "The owner stops the alarm."),
        ActionRow::plain("crash", "the process loses its memory and keeps its files",
                         [](auto& session) { session.crash(); }),
        ActionRow::plain("relaunch", "the process quits and starts again", [](auto& session) { session.relaunch(); }),
        ActionRow::plain("quit", "the owner quits", [](auto& session) { session.quit(); }),
        ActionRow::with(
            "set", "{set: {alarmVolume: 0.5}}", "the owner changes settings", settingsType(),
            [](MacSession& session, const Json& fields) {
                session.changeSettings([fields](AlarmSettings& settings) { settings = withFields(settings, fields); });
            },
            tellSettings),
        ActionRow::with("set-passcode", "{set-passcode: \"2468\"}", "the owner sets the unlock passcode",
                        type::called("a passcode", type::text()),
                        [](MacSession& session, const std::string& passcode) { session.setPasscode(passcode); }),
        ActionRow::with("keychain", "{keychain: {dataProtection: locked}}", "answers of the keychains", keychainType(),
                        changeKeychain, tellKeychain,
                        [](MacSession& session, const Keychain& change) { return unknownFault(session, change.fail); }),
        ActionRow::with(
            "login", "{login: fail}", "the answer to the login panel", type::word("login", loginWords),
            [](MacSession& session, LoginAnswer answer) { session.mac().login.setAnswer(answer); }, tellLogin),
        ActionRow::with("login-item", "{login-item: fail}", "whether macOS refuses to change the login items",
                        type::word("answer", failWords), refuseLoginItems,
                        [](bool refuses) {
                            return refuses ? "From now on macOS refuses to change the login items."
                                           : "macOS lets the login items be changed again.";
                        }),
        ActionRow::with(
            "save-panel", "{save-panel: cancel}", "the answer to save panels", savePanelType(),
            [](MacSession& session, const std::optional<std::string>& folder) {
                SimulatedSavePanels::Answer answer;
                answer.isCancelled = !folder;
                answer.folder = folder;
                session.mac().savePanels.setAnswer(std::move(answer));
            },
            [](const std::optional<std::string>& folder) {
                return folder ? "From now on photos are saved in " + quotation(*folder) + "."
                              : "From now on save panels are cancelled.";
            }),
        ActionRow::with("fail", "{fail: {PORT: FAULT}}", "faults of devices", failingPortsType(), failPorts,
                        tellFailures, unknownFault),
        ActionRow::with("fault", "{fault: {port: files, call: 3, fate: dies}}", "a fault of one call of the product",
                        plannedFaultType(), planFault, tellPlannedFault,
                        [](MacSession& session, const std::optional<CallFault>& fault) {
                            return fault ? unknownPort(session, fault->port) : std::string{};
                        }),
        ActionRow::with(
            "clock", "{clock: {ahead: 1h}}", "the Mac's clock is set", clockType(),
            [](MacSession& session, double seconds) { session.mac().wallClock.move(seconds); }, tellClock),
    };
}

} // namespace sentrel::simulation
