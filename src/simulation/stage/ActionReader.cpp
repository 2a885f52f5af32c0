#include "simulation/stage/ActionReader.hpp"

#include "simulation/mac/motion/MotionRecording.hpp"
#include "simulation/stage/CameraReader.hpp"
#include "simulation/stage/CloudReader.hpp"
#include "simulation/stage/MacReader.hpp"
#include "simulation/stage/SettingsReader.hpp"
#include "simulation/stage/ShellReader.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::array<Word<PlainAction>, 14> plainActions{{
    {"arm", PlainAction::arm},
    {"disarm", PlainAction::disarm},
    {"stop-alarm", PlainAction::stopAlarm},
    {"unplug", PlainAction::unplug},
    {"plug-in", PlainAction::plugIn},
    {"close-lid", PlainAction::closeLid},
    {"open-lid", PlainAction::openLid},
    {"screens-sleep", PlainAction::screensSleep},
    {"crash", PlainAction::crash},
    {"relaunch", PlainAction::relaunch},
    {"sleep", PlainAction::sleep},
    {"wake", PlainAction::wake},
    {"quit", PlainAction::quit},
    {"refresh", PlainAction::refresh},
}};

MoveMachine readSample(const YamlValue& value)
{
    requireList(value, "a sample");
    if (value.items.size() != 3) {
        throw SourceFault(value.line, "a sample has three numbers, [x, y, z] in g");
    }
    const double x = readNumber(value.items[0], "x");
    const double y = readNumber(value.items[1], "y");
    const double z = readNumber(value.items[2], "z");
    return {x, y, z};
}

Action readRecording(const YamlValue& value, const ReadContext& context)
{
    try {
        return PlayRecording{MotionRecording::load(readPath(value, "the recording", context)), value.text};
    } catch (const MotionRecordingError& error) {
        throw SourceFault(value.line, error.what());
    }
}

Action readAccelerometer(const YamlValue& value, const ReadContext& context)
{
    static constexpr std::array<Word<bool>, 2> rests{{{"resting", true}, {"still", false}}};
    static constexpr std::array<std::string_view, 3> keys{"sample", "file", "resting"};
    if (!value.isMap()) {
        return RestMachine{readWord(value, "accelerometer", rests)};
    }
    if (value.keys.size() != 1) {
        throw SourceFault(value.line, "'accelerometer' takes one of sample, file and resting");
    }
    const YamlValue& content = value.items.front();
    KeyChecker checker{keys, "'accelerometer'"};
    switch (checker.placeOf(value.keys.front())) {
    case 0:
        return readSample(content);
    case 1:
        return readRecording(content, context);
    default:
        return RestMachine{readFlag(content, "'resting'")};
    }
}

Action readVolume(const YamlValue& value, const ReadContext& context)
{
    static constexpr std::array<FieldRow<SetVolume>, 3> fields{{
        {"device", [](auto& action, auto& item, auto&) { action.device = readDevice(item); }, true},
        {"value", [](auto& action, auto& item, auto&) { action.value = readNumber(item, "'value'", 0.0, 1.0); }},
        {"muted", [](auto& action, auto& item, auto&) { action.muted = readFlag(item, "'muted'"); }},
    }};
    SetVolume action;
    readFields(value, "'volume'", fields, action, context);
    if (!action.value && !action.muted) {
        throw SourceFault(value.line, "'volume' needs 'value', 'muted' or both");
    }
    return action;
}

Action readAudioDeviceChange(const YamlValue& value, const ReadContext& context)
{
    static constexpr std::array<FieldRow<RemoveAudioDevice>, 1> fields{{
        {"remove", [](auto& action, auto& item, auto&) { action.device = readDevice(item); }, true},
    }};
    RemoveAudioDevice action;
    readFields(value, "'audio-device'", fields, action, context);
    return action;
}

Action readMusic(const YamlValue& value, const ReadContext&)
{
    static constexpr std::array<Word<UseMusic::Use>, 3> uses{
        {{"play", UseMusic::Use::play}, {"pause", UseMusic::Use::pause}, {"quit", UseMusic::Use::quit}}};
    return UseMusic{readWord(value, "music", uses)};
}

std::vector<FailPort::Fault> readFaults(const YamlValue& value)
{
    constexpr std::uint32_t mostTimes = 1'000'000;
    std::vector<FailPort::Fault> faults;
    if (value.isMap()) {
        refuseDuplicates(value, "'fail'");
        for (std::size_t i = 0; i < value.keys.size(); ++i) {
            const auto times = readWhole(value.items[i], "how often it fails", 0, mostTimes);
            faults.push_back({value.keys[i].text, static_cast<int>(times)});
        }
        return faults;
    }
    if (value.isList()) {
        for (const YamlValue& item : value.items) {
            faults.push_back({readText(item, "a fault")});
        }
        return faults;
    }
    if (const auto name = readOptionalText(value, "a fault")) {
        faults.push_back({*name});
    }
    return faults;
}

Action readFail(const YamlValue& value, const ReadContext&)
{
    refuseDuplicates(value, "'fail'");
    FailPorts action;
    for (std::size_t i = 0; i < value.keys.size(); ++i) {
        action.ports.push_back({value.keys[i].text, readFaults(value.items[i])});
    }
    if (action.ports.empty()) {
        throw SourceFault(value.line, "'fail' needs a port, as in {fail: {PORT: FAULT}}");
    }
    return action;
}

constexpr std::array<FieldRow<CallFault>, 4> plannedFaultFields{{
    {"port", [](auto& fault, auto& value, auto&) { fault.port = readText(value, "'port'"); }, true},
    {"operation", [](auto& fault, auto& value, auto&) { fault.operation = readText(value, "'operation'"); }},
    {"call",
     [](auto& fault, auto& value, auto&) {
         constexpr std::uint32_t mostCalls = 1'000'000;
         fault.call = readWhole(value, "the number of the call", 1, mostCalls);
     }},
    {"fate",
     [](auto& fault, auto& value, auto&) {
         using Fate = CallFault::Fate;
         static constexpr std::array<Word<Fate>, 4> fates{{{"raises", Fate::raises},
                                                           {"hangs", Fate::hangs},
                                                           {"dies", Fate::dies},
                                                           {"loses-power", Fate::losesPower}}};
         fault.fate = readWord(value, "fate of a call", fates);
     },
     true},
}};

Action readPlannedFault(const YamlValue& value, const ReadContext& context)
{
    PlanFault action;
    if (!isNone(value)) {
        readFields(value, "'fault'", plannedFaultFields, action.fault.emplace(), context);
    }
    return action;
}

Action readClock(const YamlValue& value, const ReadContext& context)
{
    static constexpr std::array<FieldRow<MoveClock>, 2> fields{{
        {"ahead", [](auto& action, auto& item, auto&) { action.seconds += toSeconds(readSpan(item, "'ahead'")); }},
        {"back", [](auto& action, auto& item, auto&) { action.seconds -= toSeconds(readSpan(item, "'back'")); }},
    }};
    MoveClock action;
    readFields(value, "'clock'", fields, action, context);
    return action;
}

Action readKeychain(const YamlValue& value, const ReadContext& context)
{
    using Access = ChangeKeychain::Access;
    static constexpr std::array<Word<Access>, 3> accesses{
        {{"open", Access::open}, {"locked", Access::locked}, {"denied", Access::denied}}};
    static constexpr std::array<FieldRow<ChangeKeychain>, 3> fields{{
        {"dataProtection",
         [](auto& action, auto& item, auto&) { action.dataProtection = readWord(item, "keychain access", accesses); }},
        {"legacy",
         [](auto& action, auto& item, auto&) { action.legacy = readWord(item, "keychain access", accesses); }},
        {"fail", [](auto& action, auto& item, auto&) { action.fail = FailPort{"keychain", readFaults(item)}; }},
    }};
    ChangeKeychain action;
    readFields(value, "'keychain'", fields, action, context);
    if (value.keys.empty()) {
        throw SourceFault(value.line, "'keychain' needs at least one key, as in {keychain: {dataProtection: locked}}");
    }
    return action;
}

struct ActionRow {
    std::string_view name;
    std::string_view example; ///< for the message if the value is missing
    Action (*read)(const YamlValue& value, const ReadContext& context);
};

constexpr std::array<ActionRow, 31> actionsWithValue{{
    {"power", "{power: battery}", [](auto& value, auto&) { return Action{SetPower{readPower(value)}}; }},
    {"accelerometer", "{accelerometer: {sample: [0, 0, 1]}}", readAccelerometer},
    {"set", "{set: {alarmVolume: 0.5}}",
     [](auto& value, auto&) { return Action{ChangeSettings{readSettings(value)}}; }},
    {"volume", "{volume: {device: 73, value: 0.1}}", readVolume},
    {"default-output", "{default-output: 91}",
     [](auto& value, auto&) { return Action{SetDefaultOutput{readOptionalDevice(value)}}; }},
    {"audio-device", "{audio-device: {remove: 73}}", readAudioDeviceChange},
    {"music", "{music: play}", readMusic},
    {"fail", "{fail: {PORT: FAULT}}", readFail},
    {"fault", "{fault: {port: files, call: 3, fate: dies}}", readPlannedFault},
    {"clock", "{clock: {ahead: 1h}}", readClock},
    {"camera", "{camera: {brightness: 0.05}}",
     [](auto& value, auto& context) { return Action{readCamera(value, context)}; }},
    {"keychain", "{keychain: {dataProtection: locked}}", readKeychain},
    {"login", "{login: fail}", [](auto& value, auto&) { return Action{AnswerLogin{readLoginAnswer(value)}}; }},
    {"displays", "{displays: 2}", [](auto& value, auto&) { return Action{SetDisplays{readDisplayCount(value)}}; }},
    {"type-passcode", "{type-passcode: \"1234\"}",
     [](auto& value, auto&) { return Action{TypePasscode{readText(value, "a passcode")}}; }},
    {"set-passcode", "{set-passcode: \"2468\"}",
     [](auto& value, auto&) { return Action{SetPasscode{readText(value, "a passcode")}}; }},
    {"menu", "{menu: Armed}", [](auto& value, auto&) { return Action{readUseMenu(value)}; }},
    {"click", "{click: Delete}",
     [](auto& value, auto&) { return Action{ClickOn{readText(value, "what to click on")}}; }},
    {"type", "{type: \"2468\"}", [](auto& value, auto&) { return Action{readTypeText(value)}; }},
    {"press", "{press: delete}", [](auto& value, auto&) { return Action{readPressKey(value)}; }},
    {"slide", "{slide: {Alarm volume: 0.5}}", [](auto& value, auto&) { return Action{readMoveSlider(value)}; }},
    {"select", "{select: [0, 1]}", [](auto& value, auto&) { return Action{readSelectRows(value)}; }},
    {"open", "{open: main}", [](auto& value, auto&) { return Action{OpenWindow{readShellWindow(value)}}; }},
    {"close", "{close: main}", [](auto& value, auto&) { return Action{CloseWindow{readShellWindow(value)}}; }},
    {"drag", "{drag: {window: main, size: [440, 600]}}",
     [](auto& value, auto& context) { return Action{readDragWindow(value, context)}; }},
    {"login-item", "{login-item: fail}", [](auto& value, auto&) { return Action{readLoginItem(value)}; }},
    {"save-panel", "{save-panel: cancel}", [](auto& value, auto&) { return Action{readSavePanel(value)}; }},
    {"network", "{network: down}", [](auto& value, auto&) { return Action{readNetwork(value)}; }},
    {"icloud", "{icloud: {quota: full}}", [](auto& value, auto& context) { return Action{readCloud(value, context)}; }},
    {"phone", "{phone: {arm: true}}", [](auto& value, auto& context) { return Action{readPhone(value, context)}; }},
    {"delete-alerts", "{delete-alerts: all}", [](auto& value, auto&) { return Action{readDeleteAlerts(value)}; }},
}};

const Word<PlainAction>* findPlain(std::string_view name)
{
    const auto found = std::ranges::find_if(plainActions, [&](const auto& word) { return word.text == name; });
    return found == plainActions.end() ? nullptr : &*found;
}

const ActionRow* findWithValue(std::string_view name)
{
    const auto found = std::ranges::find_if(actionsWithValue, [&](const ActionRow& row) { return row.name == name; });
    return found == actionsWithValue.end() ? nullptr : &*found;
}

Action readPlain(const YamlValue& value)
{
    if (const auto* action = findPlain(value.text)) {
        return action->meaning;
    }
    if (const ActionRow* action = findWithValue(value.text)) {
        throw SourceFault(value.line, inQuotes(value.text) +
                                          " needs a value, for example {do: " + std::string{action->example} + "}");
    }
    throw SourceFault(value.line, unknownWord("action", value.text, actionNames()));
}

} // namespace

std::vector<std::string_view> actionNames()
{
    std::vector<std::string_view> names;
    for (const auto& action : plainActions) {
        names.push_back(action.text);
    }
    for (const ActionRow& action : actionsWithValue) {
        names.push_back(action.name);
    }
    return names;
}

Action readAction(const YamlValue& value, const ReadContext& context)
{
    if (value.isScalar()) {
        return readPlain(value);
    }
    if (!value.isMap() || value.keys.size() != 1) {
        throw SourceFault(value.line, "'do' takes one action, such as 'arm' or {power: battery}");
    }
    const YamlValue& key = value.keys.front();
    if (const ActionRow* action = findWithValue(key.text)) {
        return action->read(value.items.front(), context);
    }
    if (findPlain(key.text) != nullptr) {
        throw SourceFault(key.line, inQuotes(key.text) + " takes no value: write {do: " + key.text + "}");
    }
    throw SourceFault(key.line, unknownWord("action", key.text, actionNames()));
}

} // namespace sentrel::simulation
