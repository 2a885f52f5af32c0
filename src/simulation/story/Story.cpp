#include "simulation/story/Story.hpp"

#include "simulation/story/EventFields.hpp"
#include "simulation/story/StorySentence.hpp"
#include "simulation/story/StoryText.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace sentrel::simulation {

namespace {

std::optional<std::uint32_t> deviceOf(const Event& event)
{
    const auto id = numberIn(event, "device");
    if (!id || *id < 0.0 || *id > 4294967295.0) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(*id);
}

std::string oneDecimal(double number)
{
    std::array<char, 48> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.1f", number);
    return {text.data(), static_cast<std::size_t>(std::clamp(length, 0, 47))};
}

std::string plainValue(const Event::Value& value)
{
    struct Writer {
        std::string operator()(std::monostate) const { return "none"; }
        std::string operator()(bool truth) const { return truth ? "yes" : "no"; }
        std::string operator()(std::int64_t whole) const { return std::to_string(whole); }
        std::string operator()(double real) const { return jsonText(real); }
        std::string operator()(const std::string& text) const { return "“" + text + "”"; }
        static std::string jsonText(double real) { return std::isfinite(real) ? Json(real).dump() : "none"; }
    };
    return std::visit(Writer{}, value);
}

} // namespace

const Story::Row Story::rows[] = {
    {"launched", &Story::tellLaunched},
    {"crashed", &Story::tellCrashed},
    {"quit", &Story::tellQuit},
    {"armed", &Story::tellArmed},
    {"disarmed", &Story::tellDisarmed},
    {"alarm.started", &Story::tellAlarmStarted},
    {"alarm.heard", &Story::tellAlarmStarted},
    {"alarm.stopped", &Story::tellAlarmStopped},
    {"audio.volume", &Story::tellVolume},
    {"volume.changed", &Story::tellVolume},
    {"volume.enforced", &Story::tellVolumeEnforced},
    {"audio.default", &Story::tellDefaultOutput},
    {"default-output.changed", &Story::tellDefaultOutput},
    {"assertion.taken", &Story::tellAssertionTaken},
    {"assertion.released", &Story::tellAssertionReleased},
};

void Story::open(const Scenario& scenario)
{
    for (const auto& device : scenario.mac.audio) {
        names_[device.id] = device.name;
        levels_[device.id] = {static_cast<double>(device.volume().value_or(1.0F)), device.isMuted()};
    }
    page_.heading(scenario.title);
    page_.paragraph(describe(scenario.mac));
}

void Story::tell(const Event& event)
{
    const bool isSystemVolume = event.name == "audio.volume" && event.text("by") == "system";
    if (!isSystemVolume && event.name != "volume.enforced" && event.name != "alarm.started" &&
        event.name != "alarm.heard") {
        tellSettledVolumes();
    }
    const auto found = std::ranges::find_if(rows, [&](const Row& row) { return row.event == event.name; });
    const auto ofCloud = cloud_.tell(event);
    if (found != std::end(rows)) {
        (this->*found->tell)(event);
    } else if (ofCloud) {
        tellSentence(event.at, *ofCloud);
    } else if (const auto sentence = sentenceOf(event)) {
        tellSentence(event.at, *sentence);
    } else {
        tellUnknown(event);
    }
}

void Story::perform(double at, const Action& action)
{
    const auto text = describe(action, [this](std::uint32_t device) { return deviceName(device); });
    if (text) {
        act(at, *text);
    }
}

void Story::remark(double at, std::string_view text)
{
    tellSettledVolumes();
    page_.line(at, StoryTone::scene, text);
}

void Story::act(double at, std::string_view text)
{
    tellSettledVolumes();
    page_.line(at, StoryTone::event, text);
}

void Story::differ(double at, const std::vector<Mismatch>& found)
{
    tellSettledVolumes();
    for (const Mismatch& mismatch : found) {
        page_.line(at, StoryTone::bad, "✗ " + sentence(mismatch) + ".");
    }
}

void Story::finish(const StorySummary& summary)
{
    tellSettledVolumes();
    page_.rule();
    const std::size_t failed = summary.mismatches.size();
    for (const Mismatch& mismatch : summary.mismatches) {
        page_.closing(StoryTone::bad, "✗",
                      summary.file + ":" + std::to_string(mismatch.line) + ": " + sentence(mismatch) + ".");
    }
    if (failed == 0) {
        page_.closing(StoryTone::good, "✓",
                      summary.held == 0   ? "Nothing was expected."
                      : summary.held == 1 ? "The one expectation holds."
                                          : "All " + std::to_string(summary.held) + " expectations hold.");
    } else {
        page_.closing(StoryTone::bad, "✗",
                      std::to_string(summary.held) + " held, " + std::to_string(failed) + " didn't.");
    }
    for (const StorySummary::Artefact& artefact : summary.artefacts) {
        page_.entry(artefact.what, artefact.where);
    }
}

void Story::tellSentence(double at, const StorySentence& sentence)
{
    if (!sentence.text.empty()) {
        page_.line(at, sentence.tone, sentence.text);
    }
}

void Story::tellUnknown(const Event& event)
{
    std::string text = event.name;
    for (const auto& [field, value] : event.fields) {
        text += (text.size() == event.name.size() ? ": " : ", ") + field + " " + plainValue(value);
    }
    page_.line(event.at, StoryTone::reaction, text);
}

void Story::tellLaunched(const Event& event)
{
    ++launches_;
    page_.line(event.at, StoryTone::event, launches_ == 1 ? "Sentrel starts." : "Sentrel starts again.");
}

void Story::tellCrashed(const Event& event)
{
    page_.line(event.at, StoryTone::event, "Sentrel crashes. Its memory is lost, its files stay.");
    endProcess();
}

void Story::tellQuit(const Event& event)
{
    page_.line(event.at, StoryTone::event, "Sentrel quits.");
    endProcess();
}

void Story::tellArmed(const Event& event)
{
    isArmed_ = true;
    page_.line(event.at, StoryTone::good, "Sentrel is armed and watches.");
}

void Story::tellDisarmed(const Event& event)
{
    if (isArmed_) { // the product also disarms at its start, which is no news
        page_.line(event.at, StoryTone::reaction, "Sentrel is disarmed.");
    }
    isArmed_ = false;
}

void Story::tellAlarmStarted(const Event& event)
{
    const bool isBeep = event.text("mode") == "beep";
    if (event.name == "alarm.started" && !isBeep) {
        return; // a tone is told when it is heard
    }
    alarmDevice_ = deviceOf(event);
    alarmVolume_ = numberIn(event, "volume").value_or(0.0);
    soundingSince_ = event.at;
    disturbed_.clear();
    std::string text = isBeep ? "The alarm sounds as the system beep" : "The alarm sounds";
    if (alarmDevice_) {
        // This sentence covers the changes of the device on the way.
        settling_.erase(*alarmDevice_);
        levels_[*alarmDevice_] = {alarmVolume_, false};
        text += " through " + deviceName(alarmDevice_) + " at " + percent(alarmVolume_);
    }
    tellSettledVolumes();
    page_.line(event.at, StoryTone::alarm, text + ".");
}

void Story::tellAlarmStopped(const Event& event)
{
    if (!soundingSince_) {
        return;
    }
    page_.line(event.at, StoryTone::good,
               "The alarm is silent, after " + oneDecimal(event.at - *soundingSince_) + " s.");
    soundingSince_.reset();
    disturbed_.clear();
}

void Story::tellVolume(const Event& event)
{
    const auto device = deviceOf(event);
    if (!device) {
        return;
    }
    if (!event.text("name").empty()) {
        names_[*device] = event.text("name");
    }
    const Level level{numberIn(event, "volume").value_or(0.0), flagIn(event, "muted")};
    if (event.text("by") != "system") {
        tellVolumeByUser(event, *device, level);
        return;
    }
    levels_[*device] = level;
    if (!disturbed_.contains(*device)) { // otherwise the enforcement's event tells it
        settling_[*device] = event.at;
    }
}

void Story::tellVolumeByUser(const Event& event, std::uint32_t device, Level level)
{
    const Level before = std::exchange(levels_[device], level);
    const bool isAttack = soundingSince_ && device == alarmDevice_;
    std::string text = isAttack ? "The thief " : "The owner ";
    const bool isMoved = std::abs(level.volume - before.volume) > numberTolerance;
    if (level.muted && !before.muted) {
        text += "mutes ";
    } else if (isMoved || level.muted == before.muted) {
        text += level.volume < before.volume ? "turns down " : "turns up ";
    } else {
        text += "unmutes ";
    }
    text += deviceName(device);
    page_.line(event.at, StoryTone::event, text + (isMoved ? " to " + percent(level.volume) + "." : "."));
    if (isAttack) {
        disturbed_.emplace(device, event.at);
    }
}

void Story::tellVolumeEnforced(const Event& event)
{
    const auto device = deviceOf(event);
    const auto since = device ? disturbed_.find(*device) : disturbed_.end();
    if (since == disturbed_.end()) {
        return; // unchanged: this happens every 0.9 s and is no news
    }
    page_.line(event.at, StoryTone::alarm,
               oneDecimal(event.at - since->second) + " s later Sentrel has it back at " + percent(alarmVolume_) + ".");
    levels_[*device] = {alarmVolume_, false};
    settling_.erase(*device);
    disturbed_.erase(since);
}

void Story::tellDefaultOutput(const Event& event)
{
    const auto device = deviceOf(event);
    if (device && !event.text("name").empty()) {
        names_[*device] = event.text("name");
    }
    page_.line(event.at, StoryTone::reaction,
               device ? "Sound now goes to " + deviceName(device) + "." : "No sound output is left.");
}

void Story::tellAssertionTaken(const Event& event)
{
    const bool isFirst = assertions_.empty();
    assertions_.emplace(event.text("name"));
    if (isFirst) {
        page_.line(event.at, StoryTone::reaction, "The Mac is kept awake.");
    }
}

void Story::tellAssertionReleased(const Event& event)
{
    if (assertions_.erase(std::string{event.text("name")}) > 0 && assertions_.empty()) {
        page_.line(event.at, StoryTone::reaction, "The Mac may sleep again.");
    }
}

/// Mute and volume are set one after the other; only the final state is told.
void Story::tellSettledVolumes()
{
    for (const auto& [device, at] : std::exchange(settling_, {})) {
        const Level& level = levels_[device];
        page_.line(at, StoryTone::reaction,
                   deviceName(device) + (level.muted ? " muted, at " : " at ") + percent(level.volume) + ".");
    }
}

void Story::endProcess()
{
    isArmed_ = false;
    soundingSince_.reset();
    disturbed_.clear();
    assertions_.clear();
    cloud_.endProcess();
}

std::string Story::deviceName(std::optional<std::uint32_t> device) const
{
    if (!device) {
        return "nothing";
    }
    const auto found = names_.find(*device);
    return found == names_.end() ? "audio device " + std::to_string(*device) : found->second;
}

} // namespace sentrel::simulation
