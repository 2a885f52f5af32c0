#include "simulator/Story.hpp"

#include "simulator/StoryText.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace sentrel::simulator {

namespace {

using simulated::Event;

std::optional<double> number(const Event& event, std::string_view field)
{
    const Event::Value* const value = event.find(field);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (const auto* real = std::get_if<double>(value)) {
        return *real;
    }
    const auto* const whole = std::get_if<std::int64_t>(value);
    return whole == nullptr ? std::nullopt : std::optional{static_cast<double>(*whole)};
}

std::optional<std::uint32_t> deviceOf(const Event& event)
{
    const auto id = number(event, "device");
    if (!id || *id < 0.0 || *id > 4294967295.0) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(*id);
}

bool flag(const Event& event, std::string_view field)
{
    const Event::Value* const value = event.find(field);
    const bool* const truth = value == nullptr ? nullptr : std::get_if<bool>(value);
    return truth != nullptr && *truth;
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
    {"slept", &Story::tellSlept},
    {"woke", &Story::tellWoke},
    {"armed", &Story::tellArmed},
    {"disarmed", &Story::tellDisarmed},
    {"power", &Story::tellPower},
    {"power.changed", &Story::tellPower},
    {"lid", &Story::tellLid},
    {"lid.changed", &Story::tellLid},
    {"trigger", &Story::tellTrigger},
    {"alarm.started", &Story::tellAlarmStarted},
    {"alarm.stopped", &Story::tellAlarmStopped},
    {"audio.volume", &Story::tellVolume},
    {"volume.changed", &Story::tellVolume},
    {"volume.enforced", &Story::tellVolumeEnforced},
    {"audio.default", &Story::tellDefaultOutput},
    {"default-output.changed", &Story::tellDefaultOutput},
    {"music.paused", &Story::tellMusicPaused},
    {"music.playing", &Story::tellMusicPlaying},
    {"music.quit", &Story::tellMusicQuit},
    {"consent.asked", &Story::tellConsentAsked},
    {"consent.answered", &Story::tellConsentAnswered},
    {"alert.saved", &Story::tellAlert},
    {"notice", &Story::tellNotice},
    {"assertion.taken", &Story::tellAssertionTaken},
    {"assertion.released", &Story::tellAssertionReleased},
    {"photo.taken", &Story::tellPhoto},
    {"photo.none", &Story::tellNoPhoto},
    {"cover.shown", &Story::tellCoverShown},
    {"cover.hidden", &Story::tellCoverHidden},
    // Told as actions, or of no interest to a listener.
    {"accelerometer.sample", &Story::tellNothing},
    {"accelerometer.recording", &Story::tellNothing},
    {"audio-device.removed", &Story::tellNothing},
    {"workspace.notification", &Story::tellNothing},
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
    if (!isSystemVolume && event.name != "volume.enforced" && event.name != "alarm.started") {
        tellSettledVolumes();
    }
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.event == event.name; });
    const Teller teller = found == std::end(rows) ? &Story::tellUnknown : found->tell;
    (this->*teller)(event);
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

void Story::tellSlept(const Event& event)
{
    page_.line(event.at, StoryTone::event, "The Mac goes to sleep.");
}

void Story::tellWoke(const Event& event)
{
    page_.line(event.at, StoryTone::event, "The Mac wakes up.");
}

void Story::tellArmed(const Event& event)
{
    isArmed_ = true;
    page_.line(event.at, StoryTone::good, "Sentrel is armed and watches.");
}

void Story::tellDisarmed(const Event& event)
{
    if (isArmed_) { // it also disarms, to be sure, when it starts
        page_.line(event.at, StoryTone::reaction, "Sentrel is disarmed.");
    }
    isArmed_ = false;
}

void Story::tellPower(const Event& event)
{
    const std::string_view state = event.text("state");
    const bool isOnCharger = state == "ac" || state.find("AC") != std::string_view::npos;
    const bool isOnBattery = state == "battery" || state.find("Battery") != std::string_view::npos;
    page_.line(event.at, StoryTone::event,
               isOnCharger   ? "The charger is plugged in."
               : isOnBattery ? "The charger is pulled out."
                             : "The Mac no longer knows where its power comes from.");
}

void Story::tellLid(const Event& event)
{
    const std::string_view state = event.text("state");
    page_.line(event.at, StoryTone::event,
               state == "closed" ? "The lid is closed."
               : state == "open" ? "The lid is opened."
                                 : "The lid can no longer be read.");
}

void Story::tellTrigger(const Event& event)
{
    page_.line(event.at, StoryTone::notice, "Sentrel notices: " + reasonTitle(event.text("reason")) + ".");
}

void Story::tellAlarmStarted(const Event& event)
{
    alarmDevice_ = deviceOf(event);
    alarmVolume_ = number(event, "volume").value_or(0.0);
    soundingSince_ = event.at;
    disturbed_.clear();
    const bool isBeep = event.text("mode") == "beep";
    std::string text = isBeep ? "The alarm sounds as the system beep" : "The alarm sounds";
    if (alarmDevice_) {
        // What happened to this device on the way is part of this sentence.
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
    const Level level{number(event, "volume").value_or(0.0), flag(event, "muted")};
    if (event.text("by") != "system") {
        tellVolumeByUser(event, *device, level);
        return;
    }
    levels_[*device] = level;
    if (!disturbed_.contains(*device)) { // otherwise the enforcement tells it
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
        return; // nobody had touched it: this happens every 0.9 s and is no news
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

void Story::tellMusicPaused(const Event& event)
{
    if (event.text("by") == "user") {
        page_.line(event.at, StoryTone::event, "The owner pauses the music.");
        return;
    }
    page_.line(event.at, StoryTone::reaction,
               event.text("by") == "key" ? "The music stops, by a press of the media key." : "The music stops.");
}

void Story::tellMusicPlaying(const Event& event)
{
    page_.line(event.at, StoryTone::event, "The music plays.");
}

void Story::tellMusicQuit(const Event& event)
{
    page_.line(event.at, StoryTone::event, "The owner quits the Music app.");
}

void Story::tellConsentAsked(const Event& event)
{
    page_.line(event.at, StoryTone::reaction, "macOS asks whether Sentrel may control Music.");
}

void Story::tellConsentAnswered(const Event& event)
{
    page_.line(event.at, StoryTone::event, flag(event, "granted") ? "The owner agrees." : "The owner refuses.");
}

void Story::tellAlert(const Event& event)
{
    page_.line(event.at, StoryTone::reaction,
               "An alert is on disk: " + reasonTitle(event.text("reason")) +
                   (flag(event, "photo") ? ", with a photo." : ", without a photo."));
}

void Story::tellNotice(const Event& event)
{
    if (!event.text("text").empty()) {
        page_.line(event.at, StoryTone::notice, "Sentrel says: “" + std::string{event.text("text")} + "”");
    }
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

void Story::tellPhoto(const Event& event)
{
    const auto width = number(event, "width");
    const auto height = number(event, "height");
    std::string text = "The camera takes a photo";
    if (width && height) {
        text += ", " + std::to_string(std::lround(*width)) + " by " + std::to_string(std::lround(*height)) + " pixels";
    }
    const auto attempts = number(event, "attempts");
    text += attempts && *attempts > 1.0 ? ", at attempt " + std::to_string(std::lround(*attempts)) : "";
    page_.line(event.at, StoryTone::reaction, text + ".");
}

void Story::tellNoPhoto(const Event& event)
{
    const std::string_view why = event.text("why");
    page_.line(event.at, StoryTone::reaction,
               why.empty() ? "The camera gives no photo." : "The camera gives no photo: " + std::string{why} + ".");
}

void Story::tellCoverShown(const Event& event)
{
    page_.line(event.at, StoryTone::reaction, "The lock screen covers the display.");
}

void Story::tellCoverHidden(const Event& event)
{
    page_.line(event.at, StoryTone::reaction, "The lock screen is gone.");
}

/// The system sets mute and volume one after the other; the ear cares for where they end.
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
}

std::string Story::deviceName(std::optional<std::uint32_t> device) const
{
    if (!device) {
        return "nothing";
    }
    const auto found = names_.find(*device);
    return found == names_.end() ? "audio device " + std::to_string(*device) : found->second;
}

} // namespace sentrel::simulator
