#pragma once

#include "ui/View.hpp"

#import <AppKit/AppKit.h>

// The tree's fonts, colors, images and keys as AppKit's. Main thread.

namespace sentrel::mac {

[[nodiscard]] NSFont* fontOf(ui::Text::Style style);
[[nodiscard]] NSColor* colorOf(ui::Text::Color color);
[[nodiscard]] NSColor* colorOf(const ui::Color& color);

/// The image, or nil when there is none of that name. The description is its accessibility text.
[[nodiscard]] NSImage* imageOf(const ui::Image& image, const std::string& description);

/// The key equivalent of a key; empty without one.
[[nodiscard]] NSString* keyEquivalentOf(const std::optional<ui::Key>& key);

/// The pressed key, if a tree can name it.
[[nodiscard]] std::optional<ui::Key> keyOf(NSEvent* event);

/// A read-only text of several lines.
[[nodiscard]] NSTextField* makeLabel();

/// Changes the label's text if it differs.
void setLabel(NSTextField* label, const std::string& text);

} // namespace sentrel::mac
