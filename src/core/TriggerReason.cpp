#include "core/TriggerReason.hpp"

#include "core/LocalizedText.hpp"

namespace sentrel {

namespace {

struct Texts {
    std::string_view rawValue;
    std::string_view title;
    std::string_view shortTitle;
};

constexpr std::array<Texts, allTriggerReasons.size()> texts{{
    {"unplugged", "Power Unplugged", "Unplugged"},
    {"lidClosed", "Lid Closed", "Lid closed"},
    {"motion", "Motion Detected", "Motion"},
    {"lockBypassAttempt", "Failed Unlock Attempt", "Failed unlock"},
}};

const Texts& textsOf(TriggerReason reason)
{
    return texts[static_cast<std::size_t>(reason)];
}

} // namespace

std::string_view rawValue(TriggerReason reason)
{
    return textsOf(reason).rawValue;
}

std::optional<TriggerReason> triggerReason(std::string_view text)
{
    for (const TriggerReason reason : allTriggerReasons) {
        if (rawValue(reason) == text) {
            return reason;
        }
    }
    return std::nullopt;
}

std::string title(TriggerReason reason, ports::Language& language)
{
    return localizedInAnyCase(language, textsOf(reason).title);
}

std::string shortTitle(TriggerReason reason, ports::Language& language)
{
    return localizedInAnyCase(language, textsOf(reason).shortTitle);
}

} // namespace sentrel
