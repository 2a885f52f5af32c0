#pragma once

#include "alerts/AlertRow.hpp"

#include <vector>

namespace sentrel {

namespace platform {
class Calendar;
class Language;
} // namespace platform

/// Groups a list, newest first, into stretches of time as seen from now: today, yesterday, this week, this month,
/// the earlier months of this year, earlier years. No section is empty, and none occurs twice. The calendar is asked
/// a constant number of times for each section.
[[nodiscard]] std::vector<AlertSection> alertSections(const AlertList& list, Date now, platform::Calendar& calendar,
                                                      platform::Language& language);

} // namespace sentrel
