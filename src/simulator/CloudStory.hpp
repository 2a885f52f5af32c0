#pragma once

#include "platform/simulated/Event.hpp"
#include "simulator/StorySentence.hpp"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel::simulator {

/// Tells what becomes of alerts and commands between the Mac, iCloud and the phone. What happens over and over, such as
/// the same failure at each attempt, is told once. One thread.
class CloudStory {
public:
    /// The event in plain English, empty when it isn't worth a word; none for one that isn't known here.
    std::optional<StorySentence> tell(const simulated::Event& event);

    /// The process is gone, and with it what it had under way.
    void endProcess();

private:
    using Teller = StorySentence (CloudStory::*)(const simulated::Event&);
    struct Row {
        std::string_view event;
        Teller tell;
    };
    static const Row rows[];

    StorySentence tellUploaded(const simulated::Event& event);
    StorySentence tellUploadFailed(const simulated::Event& event);
    StorySentence tellPresence(const simulated::Event& event);
    StorySentence tellApplied(const simulated::Event& event);
    StorySentence tellIgnored(const simulated::Event& event);
    StorySentence tellNotified(const simulated::Event& event);
    StorySentence tellRequest(const simulated::Event& event);
    [[nodiscard]] std::string alertName(const simulated::Event& event) const;

    std::map<std::string, std::string, std::less<>> reasons_; // of alerts by identifier
    std::string lastUploadFailure_;
    std::optional<bool> publishedArmed_;
    bool isThrottled_ = false;
};

} // namespace sentrel::simulator
