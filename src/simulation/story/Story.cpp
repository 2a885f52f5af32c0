#include "simulation/story/Story.hpp"

#include "simulation/stage/Wording.hpp"
#include "simulation/story/StoryTable.hpp"
#include "simulation/story/StoryText.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace sentrel::simulation {

namespace {

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
    if (const auto saved = as<events::AlertSaved>(event)) {
        alerts_[std::string{saved->id}] = reasonTitle(saved->reason);
    }
    if (tellByMemory(event)) {
        return;
    }
    const auto sentence = sentenceOf(event);
    if (!sentence) {
        tellUnknown(event);
    } else if (!sentence->text.empty()) {
        page_.line(event.at, sentence->tone, sentence->text);
    }
}

template <class Kind> bool Story::tellAs(const Event& event, void (Story::*teller)(double at, const Kind& event))
{
    const auto kind = as<Kind>(event);
    if (kind) {
        (this->*teller)(event.at, *kind);
    }
    return kind.has_value();
}

bool Story::tellByMemory(const Event& event)
{
    return tellAs(event, &Story::tellLaunched) || tellAs(event, &Story::tellCrashed) ||
           tellAs(event, &Story::tellQuit) || tellAs(event, &Story::tellArmed) || tellAs(event, &Story::tellDisarmed) ||
           tellAs(event, &Story::tellAlarmStarted) || tellAs(event, &Story::tellAlarmHeard) ||
           tellAs(event, &Story::tellAlarmStopped) || tellAs(event, &Story::tellVolume) ||
           tellAs(event, &Story::tellVolumeEnforced) || tellAs(event, &Story::tellDefaultOutput) ||
           tellAs(event, &Story::tellAssertionTaken) || tellAs(event, &Story::tellAssertionReleased) ||
           tellAs(event, &Story::tellUploaded) || tellAs(event, &Story::tellUploadFailed) ||
           tellAs(event, &Story::tellPresence) || tellAs(event, &Story::tellRequest);
}

void Story::perform(double at, const Action& action)
{
    const auto text = action.tell([this](std::uint32_t device) { return deviceName(device); });
    if (text) {
        act(at, *text);
    }
}

void Story::remark(double at, std::string_view text)
{
    page_.line(at, StoryTone::scene, text);
}

void Story::act(double at, std::string_view text)
{
    page_.line(at, StoryTone::event, text);
}

void Story::differ(double at, const std::vector<Mismatch>& found)
{
    for (const Mismatch& mismatch : found) {
        page_.line(at, StoryTone::bad, "✗ " + sentence(mismatch) + ".");
    }
}

void Story::finish(const StorySummary& summary)
{
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

void Story::tellLaunched(double at, const events::Launched& /*event*/)
{
    ++launches_;
    page_.line(at, StoryTone::event, launches_ == 1 ? "Sentrel starts." : "Sentrel starts again.");
}

void Story::tellCrashed(double at, const events::Crashed& /*event*/)
{
    page_.line(at, StoryTone::event, "Sentrel crashes. Its memory is lost, its files stay.");
    endProcess();
}

void Story::tellQuit(double at, const events::Quit& /*event*/)
{
    page_.line(at, StoryTone::event, "Sentrel quits.");
    endProcess();
}

void Story::tellArmed(double at, const events::Armed& /*event*/)
{
    isArmed_ = true;
    page_.line(at, StoryTone::good, "Sentrel is armed and watches.");
}

void Story::tellDisarmed(double at, const events::Disarmed& /*event*/)
{
    if (isArmed_) { // the product also disarms at its start, which is no news
        page_.line(at, StoryTone::reaction, "Sentrel is disarmed.");
    }
    isArmed_ = false;
}

void Story::tellAlarmStarted(double at, const events::AlarmStarted& event)
{
    if (event.mode == "beep") { // a tone is told when it is heard
        beginAlarm(at, "The alarm sounds as the system beep", event.device, event.volume);
    }
}

void Story::tellAlarmHeard(double at, const events::AlarmHeard& event)
{
    beginAlarm(at, "The alarm sounds", event.device, event.volume);
}

void Story::beginAlarm(double at, const std::string& text, std::optional<std::int64_t> device, double volume)
{
    alarmDevice_ = device;
    alarmVolume_ = volume;
    soundingSince_ = at;
    disturbed_.clear();
    if (device) {
        levels_[*device] = {volume, false};
    }
    page_.line(at, StoryTone::alarm,
               device ? text + " through " + deviceName(*device) + " at " + percent(volume) + "." : text + ".");
}

void Story::tellAlarmStopped(double at, const events::AlarmStopped& /*event*/)
{
    if (!soundingSince_) {
        return;
    }
    page_.line(at, StoryTone::good, "The alarm is silent, after " + decimal(at - *soundingSince_, 1) + " s.");
    soundingSince_.reset();
    disturbed_.clear();
}

void Story::tellVolume(double at, const events::VolumeChanged& event)
{
    const Level level{event.volume, event.muted};
    const Level before = std::exchange(levels_[event.device], level);
    const bool isAttack = soundingSince_ && event.device == alarmDevice_;
    std::string text = isAttack ? "The thief " : "The owner ";
    const bool isMoved = std::abs(level.volume - before.volume) > numberTolerance;
    if (level.muted && !before.muted) {
        text += "mutes ";
    } else if (isMoved || level.muted == before.muted) {
        text += level.volume < before.volume ? "turns down " : "turns up ";
    } else {
        text += "unmutes ";
    }
    text += deviceName(event.device);
    page_.line(at, StoryTone::event, text + (isMoved ? " to " + percent(level.volume) + "." : "."));
    if (isAttack) {
        disturbed_.emplace(event.device, at);
    }
}

void Story::tellVolumeEnforced(double at, const events::VolumeEnforced& event)
{
    const auto since = disturbed_.find(event.device);
    if (since == disturbed_.end()) {
        return; // unchanged: this happens every 0.9 s and is no news
    }
    const std::string level = " Sentrel has it back at " + percent(alarmVolume_) + ".";
    const std::string delay = decimal(at - since->second, 1);
    page_.line(at, StoryTone::alarm, (delay == "0.0" ? "At once" : delay + " s later") + level);
    levels_[event.device] = {alarmVolume_, false};
    disturbed_.erase(since);
}

void Story::tellDefaultOutput(double at, const events::DefaultOutputChanged& event)
{
    page_.line(at, StoryTone::reaction,
               event.device ? "Sound now goes to " + deviceName(*event.device) + "." : "No sound output is left.");
}

void Story::tellAssertionTaken(double at, const events::AssertionTaken& event)
{
    const bool isFirst = assertions_.empty();
    assertions_.emplace(event.name);
    if (isFirst) {
        page_.line(at, StoryTone::reaction, "The Mac is kept awake.");
    }
}

void Story::tellAssertionReleased(double at, const events::AssertionReleased& event)
{
    if (assertions_.erase(std::string{event.name}) > 0 && assertions_.empty()) {
        page_.line(at, StoryTone::reaction, "The Mac may sleep again.");
    }
}

void Story::tellUploaded(double at, const events::AlertUploaded& event)
{
    lastUploadFailure_.clear();
    const auto alert = alerts_.find(event.id);
    const std::string name = alert == alerts_.end() ? "one of an earlier run" : alert->second;
    page_.line(at, StoryTone::good, "The alert is safe in iCloud: " + name + ".");
}

void Story::tellUploadFailed(double at, const events::AlertUploadFailed& event)
{
    const std::string before = std::exchange(lastUploadFailure_, std::string{event.message});
    if (before.empty() || before != lastUploadFailure_) {
        const std::string why = event.message.empty() ? "" : ": “" + lastUploadFailure_ + "”";
        page_.line(at, StoryTone::notice, "The alert can't be uploaded" + why + " It stays on the Mac.");
    }
}

void Story::tellPresence(double at, const events::PresencePublished& event)
{
    if (std::exchange(publishedArmed_, event.isArmed) != event.isArmed) { // otherwise a heartbeat
        page_.line(at, StoryTone::reaction,
                   event.isArmed ? "The phone can see that the Mac is armed."
                                 : "The phone can see that the Mac is disarmed.");
    }
}

/// Tells throttling only: successes are no news, and the effects of other failures are told elsewhere.
void Story::tellRequest(double at, const events::CloudRequest& event)
{
    constexpr std::array<std::string_view, 3> patience{"requestRateLimited", "zoneBusy", "serviceUnavailable"};
    const bool isThrottled = std::ranges::find(patience, event.outcome) != patience.end();
    const bool isServed = event.outcome == "ok" && event.operation != "accountStatus";
    if (isThrottled && !isThrottled_) {
        page_.line(at, StoryTone::reaction, "iCloud asks the Mac for patience.");
    }
    isThrottled_ = isThrottled || (isThrottled_ && !isServed);
}

void Story::endProcess()
{
    isArmed_ = false;
    soundingSince_.reset();
    disturbed_.clear();
    assertions_.clear();
    lastUploadFailure_.clear();
}

std::string Story::deviceName(std::int64_t device) const
{
    const auto found = names_.find(device);
    return found == names_.end() ? "audio device " + std::to_string(device) : found->second;
}

} // namespace sentrel::simulation
