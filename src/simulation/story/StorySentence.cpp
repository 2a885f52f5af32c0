#include "simulation/story/StorySentence.hpp"

#include "simulation/story/EventFields.hpp"
#include "simulation/story/StoryText.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <iterator>
#include <string_view>

namespace sentrel::simulation {

namespace {

StorySentence slept(const Event&)
{
    return {StoryTone::event, "The Mac goes to sleep."};
}

StorySentence woke(const Event&)
{
    return {StoryTone::event, "The Mac wakes up."};
}

StorySentence power(const Event& event)
{
    const std::string_view state = event.text("state");
    const bool isOnCharger = state == "ac" || state.find("AC") != std::string_view::npos;
    const bool isOnBattery = state == "battery" || state.find("Battery") != std::string_view::npos;
    return {StoryTone::event, isOnCharger   ? "The charger is plugged in."
                              : isOnBattery ? "The charger is pulled out."
                                            : "The Mac no longer knows where its power comes from."};
}

StorySentence lid(const Event& event)
{
    const std::string_view state = event.text("state");
    return {StoryTone::event, state == "closed" ? "The lid is closed."
                              : state == "open" ? "The lid is opened."
                                                : "The lid can no longer be read."};
}

StorySentence trigger(const Event& event)
{
    return {StoryTone::notice, "Sentrel notices: " + reasonTitle(event.text("reason")) + "."};
}

StorySentence musicPaused(const Event& event)
{
    if (event.text("by") == "user") {
        return {StoryTone::event, "The owner pauses the music."};
    }
    return {StoryTone::reaction,
            event.text("by") == "key" ? "The music stops, by a press of the media key." : "The music stops."};
}

StorySentence musicPlaying(const Event&)
{
    return {StoryTone::event, "The music plays."};
}

StorySentence musicQuit(const Event&)
{
    return {StoryTone::event, "The owner quits the Music app."};
}

StorySentence consentAsked(const Event&)
{
    return {StoryTone::reaction, "macOS asks whether Sentrel may control Music."};
}

StorySentence consentAnswered(const Event& event)
{
    return {StoryTone::event, flagIn(event, "granted") ? "The owner agrees." : "The owner refuses."};
}

StorySentence alertSaved(const Event& event)
{
    return {StoryTone::reaction, "An alert is on disk: " + reasonTitle(event.text("reason")) +
                                     (flagIn(event, "photo") ? ", with a photo." : ", without a photo.")};
}

StorySentence notice(const Event& event)
{
    const std::string text{event.text("text")};
    return {StoryTone::notice, text.empty() ? text : "Sentrel says: “" + text + "”"};
}

StorySentence printed(const Event& event)
{
    return {StoryTone::reaction, "Sentrel prints: “" + std::string{event.text("text")} + "”"};
}

StorySentence photoTaken(const Event& event)
{
    const auto width = numberIn(event, "width");
    const auto height = numberIn(event, "height");
    const auto attempts = std::lround(numberIn(event, "attempts").value_or(1.0));
    std::string text = attempts > 1 ? "It is dark: the camera takes " + std::to_string(attempts) +
                                          " photos, one after the other, and the last is kept"
                                    : "The camera takes a photo";
    if (width && height) {
        text += ", " + std::to_string(std::lround(*width)) + " by " + std::to_string(std::lround(*height)) + " pixels";
    }
    return {StoryTone::reaction, text + "."};
}

StorySentence photoMissing(const Event& event)
{
    struct Why {
        std::string_view word;
        std::string_view text;
    };
    static constexpr std::array<Why, 3> known{{
        {"not authorized", "Sentrel isn't allowed to use the camera"},
        {"no camera", "there is no camera"},
        {"timed out", "the camera gave nothing within 5 s"},
    }};
    const std::string_view why = event.text("why");
    const auto found = std::ranges::find_if(known, [&](const Why& each) { return each.word == why; });
    const std::string text{found == known.end() ? why : found->text};
    return {StoryTone::reaction, "No photo is taken" + (text.empty() ? text : ": " + text) + "."};
}

StorySentence passcodeSet(const Event& event)
{
    return {StoryTone::event, flagIn(event, "saved")
                                  ? "The owner sets an unlock passcode."
                                  : "The owner wants to set an unlock passcode, but the keychain refuses it."};
}

StorySentence passcode(const Event& event)
{
    struct Outcome {
        std::string_view name;
        StorySentence sentence;
    };
    const Outcome known[] = {
        {"unlocked", {StoryTone::good, "The passcode is right."}},
        {"incorrect", {StoryTone::reaction, "The passcode is wrong."}},
        {"lockedOut", {StoryTone::notice, "The passcode field is locked for a while."}},
        {"triggered", {StoryTone::notice, "The passcode is wrong, once too often."}},
    };
    for (const Outcome& each : known) {
        if (each.name == event.text("outcome")) {
            return each.sentence;
        }
    }
    return {StoryTone::reaction, "The passcode: " + std::string{event.text("outcome")} + "."};
}

StorySentence coverShown(const Event& event)
{
    const auto windows = std::lround(numberIn(event, "windows").value_or(1.0));
    return {StoryTone::reaction, windows == 1 ? "The lock screen covers the display."
                                              : "The lock screen covers " + std::to_string(windows) + " displays."};
}

StorySentence coverHidden(const Event&)
{
    return {StoryTone::good, "The lock screen is gone."};
}

StorySentence typedNowhere(const Event&)
{
    return {StoryTone::reaction, "No lock screen takes what is typed."};
}

StorySentence displaysChanged(const Event& event)
{
    const auto count = std::lround(numberIn(event, "count").value_or(0.0));
    return {StoryTone::event, count == 0   ? "No display is left."
                              : count == 1 ? "One display is connected now, the Mac's own."
                                           : std::to_string(count) + " displays are connected now."};
}

StorySentence login(const Event& event)
{
    const std::string_view answer = event.text("answer");
    const std::string asked = "macOS asks for the Mac login, “" + std::string{event.text("reason")} + "”: ";
    if (answer == "unavailable") {
        return {StoryTone::reaction, "macOS can't ask for the Mac login."};
    }
    return {StoryTone::reaction, asked + (answer == "succeed"  ? "it is given."
                                          : answer == "cancel" ? "the panel is cancelled."
                                          : answer == "fail"   ? "it is wrong."
                                                               : "Sentrel no longer wants to know.")};
}

StorySentence phoneFindsNoMac(const Event&)
{
    return {StoryTone::reaction, "The phone knows of no Mac."};
}

StorySentence phoneRefused(const Event& event)
{
    return {StoryTone::reaction, "iCloud refuses what the phone says: “" + std::string{event.text("why")} + "”."};
}

StorySentence otherUser(const Event&)
{
    return {StoryTone::reaction, "Sentrel forgets the alerts of the account that was there before."};
}

StorySentence cloudDamaged(const Event& event)
{
    return {StoryTone::reaction,
            "What iCloud held for " + std::string{event.text("account")} + " can't be read. The account begins anew."};
}

StorySentence cacheDamaged(const Event&)
{
    return {StoryTone::reaction, "What Sentrel remembered of iCloud can't be read. It asks anew."};
}

StorySentence quitAsked(const Event&)
{
    return {StoryTone::event, "Sentrel is asked to quit."};
}

StorySentence quitCancelled(const Event&)
{
    return {StoryTone::reaction, "It wants the Mac login before it quits."};
}

StorySentence loginItem(const Event& event)
{
    constexpr double enabled = 1.0; // SMAppServiceStatusEnabled
    const bool isEnabled = numberIn(event, "status") == enabled;
    return {StoryTone::reaction, isEnabled ? "Sentrel will open at login." : "Sentrel will not open at login."};
}

StorySentence alarmUnheard(const Event&)
{
    return {StoryTone::event, "Sentrel sounds the alarm, but nothing is heard."};
}

StorySentence previewShown(const Event&)
{
    return {StoryTone::reaction, "The photo is shown in a panel of its own."};
}

/// Why a file can't be written, by the `errno` of an event.
std::string_view diskTrouble(const Event& event)
{
    const auto error = std::lround(numberIn(event, "error").value_or(0.0));
    if (error == ENOSPC || error == EDQUOT) {
        return "the disk is full";
    }
    return error == EACCES || error == EPERM || error == EROFS ? "writing is not allowed" : "the disk refuses it";
}

StorySentence alertFailed(const Event& event)
{
    return {StoryTone::bad, "No alert could be made: " + reasonTitle(event.text("reason")) + "."};
}

StorySentence alertNotSaved(const Event&)
{
    return {StoryTone::notice, "The alert can't be saved on the Mac as it is. Sentrel keeps it in memory, too."};
}

StorySentence cacheNotSaved(const Event& event)
{
    return {StoryTone::notice,
            "Sentrel's list of what iCloud holds can't be saved: " + std::string{diskTrouble(event)} + "."};
}

StorySentence defaultsNotSaved(const Event& event)
{
    return {StoryTone::notice, "The user defaults can't be saved: " + std::string{diskTrouble(event)} + "."};
}

StorySentence defaultsDamaged(const Event&)
{
    return {StoryTone::notice, "The user defaults can't be read. Sentrel begins with new ones."};
}

StorySentence tableDamaged(const Event&)
{
    return {StoryTone::notice, "A table of translations can't be read whole."};
}

StorySentence deviceAdded(const Event& event)
{
    return {StoryTone::event, std::string{event.text("name")} + " is connected."};
}

StorySentence toneRestarted(const Event&)
{
    return {StoryTone::alarm, "The tone had stopped. Sentrel starts it again."};
}

StorySentence uploadRaised(const Event&)
{
    return {StoryTone::notice, "The upload breaks off. It is tried again later."};
}

struct Row {
    std::string_view event;
    StorySentence (*tell)(const Event& event);
};

constexpr Row rows[] = {
    {"slept", slept},
    {"woke", woke},
    {"power", power},
    {"power.changed", power},
    {"lid", lid},
    {"lid.changed", lid},
    {"trigger", trigger},
    {"music.paused", musicPaused},
    {"music.playing", musicPlaying},
    {"music.quit", musicQuit},
    {"consent.asked", consentAsked},
    {"consent.answered", consentAnswered},
    {"alert.saved", alertSaved},
    {"notice", notice},
    {"printed", printed},
    {"photo.taken", photoTaken},
    {"photo.none", photoMissing},
    {"passcode.set", passcodeSet},
    {"passcode", passcode},
    {"cover.shown", coverShown},
    {"cover.hidden", coverHidden},
    {"typed.nowhere", typedNowhere},
    {"displays.changed", displaysChanged},
    {"login", login},
    {"phone.noMac", phoneFindsNoMac},
    {"phone.refused", phoneRefused},
    {"cloud.userChanged", otherUser},
    {"icloud.damaged", cloudDamaged},
    {"alertCache.damaged", cacheDamaged},
    {"quit.asked", quitAsked},
    {"quit.cancelled", quitCancelled},
    {"login-item", loginItem},
    {"preview.shown", previewShown},
    {"alert.failed", alertFailed},
    {"alert.saveFailed", alertNotSaved},
    {"alertCache.notSaved", cacheNotSaved},
    {"defaults.writeFailed", defaultsNotSaved},
    {"defaults.damaged", defaultsDamaged},
    {"localization.damaged", tableDamaged},
    {"audio-device.added", deviceAdded},
    {"tone.restarted", toneRestarted},
    {"upload.raised", uploadRaised},
    {"alarm.unheard", alarmUnheard},
};

/// Told as actions, or of no interest.
constexpr std::string_view untold[] = {"accelerometer.sample",
                                       "accelerometer.recording",
                                       "audio-device.removed",
                                       "workspace.notification",
                                       "phone.command",
                                       "push.received",
                                       "fanout",
                                       "fanout.failed",
                                       "presence.failed",
                                       "activation-policy",
                                       "preview.closed"};

} // namespace

std::optional<StorySentence> sentenceOf(const Event& event)
{
    const auto* const row = std::ranges::find_if(rows, [&](const Row& each) { return each.event == event.name; });
    if (row != std::end(rows)) {
        return row->tell(event);
    }
    const bool isUntold = std::ranges::find(untold, event.name) != std::end(untold);
    return isUntold ? std::optional{StorySentence{}} : std::nullopt;
}

} // namespace sentrel::simulation
