#pragma once

#include "ports/Automation.hpp"

#include <memory>

// Other applications, and what pauses them.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::RunningApplications> makeRunningApplications();
[[nodiscard]] std::unique_ptr<ports::Automation> makeAutomation();
[[nodiscard]] std::unique_ptr<ports::EventPosting> makeEventPosting();

} // namespace sentrel::mac
