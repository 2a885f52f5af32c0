#pragma once

#include "ports/ApplicationActivation.hpp"
#include "ports/ApplicationNotifications.hpp"
#include "ports/Calendar.hpp"
#include "ports/HostInfo.hpp"
#include "ports/Language.hpp"
#include "ports/LoginItem.hpp"
#include "ports/WallClock.hpp"
#include "ports/WorkspaceNotifications.hpp"

#include <memory>

// The computer, its user and this application among the others.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::WallClock> makeWallClock();
[[nodiscard]] std::unique_ptr<ports::HostInfo> makeHostInfo();
[[nodiscard]] std::unique_ptr<ports::Language> makeLanguage();
[[nodiscard]] std::unique_ptr<ports::Calendar> makeCalendar();
[[nodiscard]] std::unique_ptr<ports::LoginItem> makeLoginItem();
[[nodiscard]] std::unique_ptr<ports::ApplicationActivation> makeApplicationActivation();
[[nodiscard]] std::unique_ptr<ports::ApplicationNotifications> makeApplicationNotifications();
[[nodiscard]] std::unique_ptr<ports::WorkspaceNotifications> makeWorkspaceNotifications();

} // namespace sentrel::mac
