#pragma once

#include "platform/macos/NodeTarget.hpp"

namespace sentrel::macos {

/// The AppKit view of an element. A control reports to the target.
[[nodiscard]] NSView* makeElementView(const ui::View& view, SentrelNodeTarget* target);

/// Brings a view that was made for an element of the same kind up to date; touches only what differs.
void updateElementView(NSView* shown, const ui::View& view, bool isEnabled);

/// The color as AppKit has it.
[[nodiscard]] NSColor* colorOf(const ui::Color& color);

} // namespace sentrel::macos
