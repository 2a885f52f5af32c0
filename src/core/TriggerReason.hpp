#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel {

namespace ports {
class Language;
}

/// The cause of an alarm.
enum class TriggerReason { unplugged, lidClosed, motion, lockBypassAttempt };

/// All causes, in order.
inline constexpr std::array<TriggerReason, 4> allTriggerReasons{
    TriggerReason::unplugged, TriggerReason::lidClosed, TriggerReason::motion, TriggerReason::lockBypassAttempt};

/// The cause's text in stored records.
[[nodiscard]] std::string_view rawValue(TriggerReason reason);

/// The cause for a stored text; none if the text is unknown.
[[nodiscard]] std::optional<TriggerReason> triggerReason(std::string_view rawValue);

/// The cause's title for lists and the status, in the user's language.
[[nodiscard]] std::string title(TriggerReason reason, ports::Language& language);

/// The cause's name in the cloud record, in the user's language.
[[nodiscard]] std::string shortTitle(TriggerReason reason, ports::Language& language);

} // namespace sentrel

/// Hashes the raw value, so that the hash doesn't depend on the order of the cases.
template <> struct std::hash<sentrel::TriggerReason> {
    std::size_t operator()(sentrel::TriggerReason reason) const noexcept
    {
        return std::hash<std::string_view>{}(sentrel::rawValue(reason));
    }
};
