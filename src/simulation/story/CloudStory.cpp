#include "simulation/story/CloudStory.hpp"

#include "simulation/story/EventFields.hpp"
#include "simulation/story/StoryText.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace sentrel::simulation {

const CloudStory::Row CloudStory::rows[] = {
    {"alert.uploaded", &CloudStory::tellUploaded},     {"alert.uploadFailed", &CloudStory::tellUploadFailed},
    {"presence.published", &CloudStory::tellPresence}, {"command.applied", &CloudStory::tellApplied},
    {"command.ignored", &CloudStory::tellIgnored},     {"phone.notified", &CloudStory::tellNotified},
    {"cloud.request", &CloudStory::tellRequest},
};

std::optional<StorySentence> CloudStory::tell(const Event& event)
{
    if (event.name == "alert.saved") {
        reasons_[std::string{event.text("id")}] = reasonTitle(event.text("reason"));
    }
    const auto* const found = std::ranges::find_if(rows, [&](const Row& row) { return row.event == event.name; });
    return found == std::end(rows) ? std::nullopt : std::optional{(this->*found->tell)(event)};
}

void CloudStory::endProcess()
{
    lastUploadFailure_.clear();
}

StorySentence CloudStory::tellUploaded(const Event& event)
{
    lastUploadFailure_.clear();
    return {StoryTone::good, "The alert is safe in iCloud: " + alertName(event) + "."};
}

StorySentence CloudStory::tellUploadFailed(const Event& event)
{
    std::string failure{event.text("message")};
    if (failure == lastUploadFailure_) {
        return {};
    }
    lastUploadFailure_ = failure;
    return {StoryTone::notice, "The alert can't be uploaded" + (failure.empty() ? failure : ": “" + failure + "”") +
                                   " It stays on the Mac."};
}

StorySentence CloudStory::tellPresence(const Event& event)
{
    const bool isArmed = flagIn(event, "isArmed");
    if (publishedArmed_ == isArmed) {
        return {}; // a heartbeat
    }
    publishedArmed_ = isArmed;
    return {StoryTone::reaction,
            isArmed ? "The phone can see that the Mac is armed." : "The phone can see that the Mac is disarmed."};
}

StorySentence CloudStory::tellApplied(const Event& /*event*/)
{
    return {StoryTone::reaction, "Sentrel has done what the phone asked."};
}

StorySentence CloudStory::tellIgnored(const Event& event)
{
    struct Why {
        std::string_view word;
        std::string_view text;
    };
    static constexpr Why known[] = {
        {"repeated", "it has had this one already"},
        {"stale", "it is too old"},
        {"undated", "it has no date"},
    };
    const std::string_view why = event.text("why");
    const auto* const found = std::ranges::find_if(known, [&](const Why& each) { return each.word == why; });
    const std::string text{found == std::end(known) ? why : found->text};
    return {StoryTone::notice, "Sentrel doesn't obey the phone's command" + (text.empty() ? text : ": " + text) + "."};
}

StorySentence CloudStory::tellNotified(const Event& event)
{
    return {StoryTone::good, "The owner's phone shows: “" + std::string{event.text("text")} + "”"};
}

/// Tells throttling only: successes are no news, and the effects of other failures are told elsewhere.
StorySentence CloudStory::tellRequest(const Event& event)
{
    static constexpr std::string_view patience[] = {"requestRateLimited", "zoneBusy", "serviceUnavailable"};
    const std::string_view outcome = event.text("outcome");
    const bool isThrottled = std::ranges::find(patience, outcome) != std::end(patience);
    const bool isServed = outcome == "ok" && event.text("operation") != "accountStatus";
    const bool isNews = isThrottled && !isThrottled_;
    isThrottled_ = isThrottled || (isThrottled_ && !isServed);
    return isNews ? StorySentence{StoryTone::reaction, "iCloud asks the Mac for patience."} : StorySentence{};
}

std::string CloudStory::alertName(const Event& event) const
{
    const auto found = reasons_.find(event.text("id"));
    return found == reasons_.end() ? "one of an earlier run" : found->second;
}

} // namespace sentrel::simulation
