#include "simulation/story/StoryTable.hpp"

#include "core/Events.hpp"
#include "simulation/Events.hpp"
#include "simulation/stage/Wording.hpp"
#include "simulation/story/StoryText.hpp"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

using namespace events;
using enum StoryTone;

/// `event` is also the name of a parameter.
constexpr StoryTone happens = StoryTone::event;

/// The text with each "{field}" replaced by that field's text.
std::string filled(std::string_view text, const Event& event)
{
    std::string result;
    for (auto open = text.find('{'); open != std::string_view::npos; open = text.find('{')) {
        const auto close = text.find('}', open);
        result += text.substr(0, open);
        result += event.text(text.substr(open + 1, close - open - 1));
        text.remove_prefix(close + 1);
    }
    return result += text;
}

/// The text for a word of an event; the word itself if the table lacks it.
std::string meaning(std::string_view word, std::initializer_list<std::pair<std::string_view, std::string_view>> table)
{
    const auto* const found = std::ranges::find_if(table, [&](const auto& entry) { return entry.first == word; });
    return std::string{found == table.end() ? word : found->second};
}

/// Why a file can't be written, by an `errno`.
std::string diskTrouble(std::int64_t error)
{
    if (error == ENOSPC || error == EDQUOT) {
        return "the disk is full";
    }
    return error == EACCES || error == EPERM || error == EROFS ? "writing is not allowed" : "the disk refuses it";
}

std::string power(const PowerChanged& event)
{
    const auto has = [&](std::string_view part) { return event.state.find(part) != std::string_view::npos; };
    return has("AC")        ? "The charger is plugged in."
           : has("Battery") ? "The charger is pulled out."
                            : "The Mac no longer knows where its power comes from.";
}

std::string lid(const LidChanged& event)
{
    return event.state == "closed" ? "The lid is closed."
           : event.state == "open" ? "The lid is opened."
                                   : "The lid can no longer be read.";
}

StorySentence musicPaused(const MusicPaused& event)
{
    if (event.by == "user") {
        return {happens, "The owner pauses the music."};
    }
    return {reaction, event.by == "key" ? "The music stops, by a press of the media key." : "The music stops."};
}

std::string photoTaken(const PhotoTaken& event)
{
    std::string text = event.attempts > 1 ? "It is dark: the camera takes " + std::to_string(event.attempts) +
                                                " photos, one after the other, and the last is kept"
                                          : "The camera takes a photo";
    if (event.width && event.height) {
        text += ", " + std::to_string(*event.width) + " by " + std::to_string(*event.height) + " pixels";
    }
    return text + ".";
}

std::string noPhoto(const NoPhoto& event)
{
    const std::string why = meaning(event.why, {{"not authorized", "Sentrel isn't allowed to use the camera"},
                                                {"no camera", "there is no camera"},
                                                {"timed out", "the camera gave nothing within 5 s"}});
    return "No photo is taken" + (why.empty() ? why : ": " + why) + ".";
}

StorySentence passcodeTried(const PasscodeTried& event)
{
    if (event.outcome == "unlocked") {
        return {good, "The passcode is right."};
    }
    if (event.outcome == "incorrect") {
        return {reaction, "The passcode is wrong."};
    }
    if (event.outcome == "lockedOut") {
        return {notice, "The passcode field is locked for a while."};
    }
    if (event.outcome == "triggered") {
        return {notice, "The passcode is wrong, once too often."};
    }
    if (event.outcome == "raised") {
        return {notice, "The passcode could not be checked."};
    }
    return {reaction, "The passcode: " + std::string{event.outcome} + "."};
}

std::string login(const LoginAsked& event)
{
    if (event.answer == "unavailable") {
        return "macOS can't ask for the Mac login.";
    }
    return "macOS asks for the Mac login (" + quotation(event.reason) + "), " +
           (event.answer == "succeed"  ? "and gets it."
            : event.answer == "cancel" ? "and the panel is cancelled."
            : event.answer == "fail"   ? "and gets a wrong password."
                                       : "until Sentrel no longer wants to know.");
}

std::string commandIgnored(const CommandIgnored& event)
{
    const std::string why = meaning(
        event.why,
        {{"repeated", "it has had this one already"}, {"stale", "it is too old"}, {"undated", "it has no date"}});
    return "Sentrel doesn't obey the phone's command" + (why.empty() ? why : ": " + why) + ".";
}

std::string displays(const DisplaysChanged& event)
{
    return event.count == 0   ? "No display is left."
           : event.count == 1 ? "One display is connected now, the Mac's own."
                              : std::to_string(event.count) + " displays are connected now.";
}

std::string trigger(const Trigger& event)
{
    return "Sentrel notices: " + reasonTitle(event.reason) + ".";
}

std::string alertSaved(const AlertSaved& event)
{
    return "An alert is on disk: " + reasonTitle(event.reason) +
           (event.photo ? ", with a photo." : ", without a photo.");
}

std::string alertFailed(const AlertFailed& event)
{
    return "No alert could be made: " + reasonTitle(event.reason) + ".";
}

std::string noticeShown(const Notice& event)
{
    return event.text ? "Sentrel says: " + quotation(*event.text) : std::string{};
}

std::string passcodeSet(const PasscodeSet& event)
{
    return event.saved ? "The owner sets an unlock passcode."
                       : "The owner wants to set an unlock passcode, but the keychain refuses it.";
}

std::string coverShown(const CoverShown& event)
{
    return event.windows == 1 ? "The lock screen covers the display."
                              : "The lock screen covers " + std::to_string(event.windows) + " displays.";
}

std::string loginItem(const LoginItemChanged& event)
{
    constexpr std::int64_t enabled = 1; // SMAppServiceStatusEnabled
    return event.status == enabled ? "Sentrel will open at login." : "Sentrel will not open at login.";
}

std::string consentAnswered(const ConsentAnswered& event)
{
    return event.granted ? "The owner agrees." : "The owner refuses.";
}

std::string cacheNotSaved(const AlertCacheNotSaved& event)
{
    return "Sentrel's list of what iCloud holds can't be saved: " + diskTrouble(event.error) + ".";
}

std::string defaultsNotSaved(const DefaultsWriteFailed& event)
{
    return "The user defaults can't be saved: " + diskTrouble(event.error) + ".";
}

/// Tells events of one kind.
struct Row {
    std::string_view event;
    StorySentence (*tell)(const Row& row, const Event& event);
    StoryTone tone = reaction;
    std::string_view text;
};

/// Always the same text, but for "{field}".
template <class Kind> constexpr Row row(StoryTone tone, std::string_view text)
{
    return {Kind::names.event,
            [](const Row& self, const Event& event) -> StorySentence { return {self.tone, filled(self.text, event)}; },
            tone, text};
}

/// A text that depends on the fields.
template <class Kind, std::string (*text)(const Kind&)> constexpr Row row(StoryTone tone)
{
    return {Kind::names.event,
            [](const Row& self, const Event& event) -> StorySentence { return {self.tone, text(*as<Kind>(event))}; },
            tone,
            {}};
}

/// A tone that depends on the fields, too.
template <class Kind, StorySentence (*sentence)(const Kind&)> constexpr Row row()
{
    return {Kind::names.event, [](const Row&, const Event& event) { return sentence(*as<Kind>(event)); }, reaction, {}};
}

/// Told as an action, or of no interest.
template <class Kind> constexpr Row untold()
{
    return row<Kind>(reaction, "");
}

constexpr Row rows[] = {
    row<Slept>(happens, "The Mac goes to sleep."),
    row<Woke>(happens, "The Mac wakes up."),
    row<PowerChanged, power>(happens),
    row<LidChanged, lid>(happens),
    row<DisplaysChanged, displays>(happens),
    row<AudioDeviceAdded>(happens, "{name} is connected."),
    row<MusicPlaying>(happens, "The music plays."),
    row<MusicPaused, musicPaused>(),
    row<MusicQuit>(happens, "The owner quits the Music app."),
    row<ConsentAsked>(reaction, "macOS asks whether Sentrel may control Music."),
    row<ConsentAnswered, consentAnswered>(happens),
    row<Trigger, trigger>(notice),
    row<Notice, noticeShown>(notice),
    row<Printed>(reaction, "Sentrel prints: “{text}”"),
    row<AlarmUnheard>(happens, "Sentrel sounds the alarm, but nothing is heard."),
    row<ToneRestarted>(alarm, "The tone had stopped. Sentrel starts it again."),
    row<PhotoTaken, photoTaken>(reaction),
    row<NoPhoto, noPhoto>(reaction),
    row<AlertSaved, alertSaved>(reaction),
    row<AlertFailed, alertFailed>(bad),
    row<AlertSaveFailed>(notice, "The alert can't be saved on the Mac as it is. Sentrel keeps it in memory, too."),
    row<UploadRaised>(notice, "The upload breaks off. It is tried again later."),
    row<PasscodeSet, passcodeSet>(happens),
    row<PasscodeTried, passcodeTried>(),
    row<TypedNowhere>(reaction, "No lock screen takes what is typed."),
    row<CoverShown, coverShown>(reaction),
    row<CoverHidden>(good, "The lock screen is gone."),
    row<LoginAsked, login>(reaction),
    row<QuitAsked>(happens, "Sentrel is asked to quit."),
    row<QuitCancelled>(reaction, "It wants the Mac login before it quits."),
    row<LoginItemChanged, loginItem>(reaction),
    row<PreviewShown>(reaction, "The photo is shown in a panel of its own."),
    row<CommandApplied>(reaction, "Sentrel has done what the phone asked."),
    row<CommandIgnored, commandIgnored>(notice),
    row<PhoneNotified>(good, "The owner's phone shows: “{text}”"),
    row<PhoneFoundNoMac>(reaction, "The phone knows of no Mac."),
    row<PhoneRefused>(reaction, "iCloud refuses what the phone says: “{why}”."),
    row<CloudUserChanged>(reaction, "Sentrel forgets the alerts of the account that was there before."),
    row<CloudDamaged>(reaction, "What iCloud held for {account} can't be read. The account begins anew."),
    row<AlertCacheDamaged>(reaction, "What Sentrel remembered of iCloud can't be read. It asks anew."),
    row<AlertCacheNotSaved, cacheNotSaved>(notice),
    row<DefaultsWriteFailed, defaultsNotSaved>(notice),
    row<DefaultsDamaged>(notice, "The user defaults can't be read. Sentrel begins with new ones."),
    row<LocalizationDamaged>(notice, "A table of translations can't be read whole."),
    untold<AccelerometerSample>(),
    untold<AccelerometerRecording>(),
    untold<AudioDeviceRemoved>(),
    untold<WorkspaceNotification>(),
    untold<PhoneCommand>(),
    untold<PushReceived>(),
    untold<FanOut>(),
    untold<FanOutFailed>(),
    untold<PresenceFailed>(),
    untold<ActivationPolicySet>(),
    untold<PreviewClosed>(),
};

} // namespace

std::optional<StorySentence> sentenceOf(const Event& event)
{
    const auto* const row = std::ranges::find(rows, event.name, &Row::event);
    return row == std::end(rows) ? std::nullopt : std::optional{row->tell(*row, event)};
}

} // namespace sentrel::simulation
