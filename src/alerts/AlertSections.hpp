#pragma once

#include "alerts/AlertRow.hpp"

#include <vector>

namespace sentrel {

namespace ports {
class Calendar;
class Language;
} // namespace ports

/// Groups a list, newest first, into stretches of time as seen from now: today, yesterday, this week, this month,
/// the earlier months of this year, earlier years. No section is empty, and none occurs twice. The calendar is asked
/// a constant number of times for each section.
[[nodiscard]] std::vector<AlertSection> alertSections(const AlertList& list, Date now, ports::Calendar& calendar,
                                                      ports::Language& language);

} // namespace sentrel
