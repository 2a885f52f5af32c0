#pragma once

#import <AppKit/AppKit.h>

namespace sentrel::mac {

/// The application's menu while it has a window in front. It gives fields the keys for copying and pasting.
[[nodiscard]] NSMenu* makeMainMenu();

} // namespace sentrel::mac
