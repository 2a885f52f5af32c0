#pragma once

#include "ports/Journal.hpp"
#include "ports/UserDefaults.hpp"

#include <memory>

// User defaults and the log.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::UserDefaults> makeUserDefaults();
[[nodiscard]] std::unique_ptr<ports::Journal> makeJournal();

} // namespace sentrel::mac
