#pragma once

#include "simulation/Event.hpp"
#include "simulation/story/StorySentence.hpp"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// Tells the events of alerts and commands between the Mac, iCloud and the phone. Repetitions, such as the same failure
/// at each attempt, are told once. One thread.
class CloudStory {
public:
    /// The event in plain English, empty if it isn't worth telling; none for an unknown event.
    std::optional<StorySentence> tell(const Event& event);

    /// The process is gone, with everything it had under way.
    void endProcess();

private:
    using Teller = StorySentence (CloudStory::*)(const Event&);
    struct Row {
        std::string_view event;
        Teller tell;
    };
    static const Row rows[];

    StorySentence tellUploaded(const Event& event);
    StorySentence tellUploadFailed(const Event& event);
    StorySentence tellPresence(const Event& event);
    StorySentence tellApplied(const Event& event);
    StorySentence tellIgnored(const Event& event);
    StorySentence tellNotified(const Event& event);
    StorySentence tellRequest(const Event& event);
    [[nodiscard]] std::string alertName(const Event& event) const;

    std::map<std::string, std::string, std::less<>> reasons_; // by alert identifier
    std::string lastUploadFailure_;
    bool publishedArmed_ = false; // as the phone sees it; at first it sees no Mac
    bool isThrottled_ = false;
};

} // namespace sentrel::simulation
