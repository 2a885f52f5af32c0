#pragma once

namespace sentrel {

struct AlarmSettings;

/// Whether the change makes an armed Mac easier to steal: it would notice less, be quieter, tell less, or ask less.
[[nodiscard]] bool loosensProtection(const AlarmSettings& before, const AlarmSettings& after);

} // namespace sentrel
