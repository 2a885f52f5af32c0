#pragma once

#import <AppKit/AppKit.h>

namespace sentrel::mac {

/// The menu of the application while it has a window in front. Fields get their keys for copying and pasting from it.
[[nodiscard]] NSMenu* makeMainMenu();

} // namespace sentrel::mac
