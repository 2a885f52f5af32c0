#pragma once

namespace sentrel {

struct AlarmSettings;

/// Whether the change makes an armed Mac easier to steal: fewer triggers, less sound, fewer messages or less security.
[[nodiscard]] bool loosensProtection(const AlarmSettings& before, const AlarmSettings& after);

} // namespace sentrel
