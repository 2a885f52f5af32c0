#pragma once

#include "ui/View.hpp"

#import <AppKit/AppKit.h>

// What the tree's words for fonts, colors, images and keys mean on a Mac. Main thread.

namespace sentrel::mac {

[[nodiscard]] NSFont* fontOf(ui::Text::Style style);
[[nodiscard]] NSColor* colorOf(ui::Text::Color color);
[[nodiscard]] NSColor* colorOf(const ui::Color& color);

/// The image, or nil when there is none of that name. Screen readers say the description, if any.
[[nodiscard]] NSImage* imageOf(const ui::Image& image, const std::string& description);

/// The key equivalent of a key; empty without one.
[[nodiscard]] NSString* keyEquivalentOf(const std::optional<ui::Key>& key);

/// The key that has been pressed, if it is one of those.
[[nodiscard]] std::optional<ui::Key> keyOf(NSEvent* event);

/// A text of several lines that nobody edits.
[[nodiscard]] NSTextField* makeLabel();

/// Changes the label's text if it differs.
void setLabel(NSTextField* label, const std::string& text);

} // namespace sentrel::mac
