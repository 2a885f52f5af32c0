#pragma once

#include "simulation/stage/ShellAction.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

// Readers of actions on the menu, the windows and the panels. Each function throws a `SourceFault` for invalid values.

/// A text or identity; the plain words `open` and `close` for the menu itself.
[[nodiscard]] UseMenu readUseMenu(const YamlValue& value);

/// A text, or a map with one field and its text. The text may be empty.
[[nodiscard]] TypeText readTypeText(const YamlValue& value);

/// `return`, `delete` or `escape`.
[[nodiscard]] PressKey readPressKey(const YamlValue& value);

/// A map with one slider and its value.
[[nodiscard]] MoveSlider readMoveSlider(const YamlValue& value);

/// A list of places.
[[nodiscard]] SelectRows readSelectRows(const YamlValue& value);

/// `main` or `alerts`.
[[nodiscard]] ShellWindow readShellWindow(const YamlValue& value);

/// A map of `window`, `size` and `to`.
[[nodiscard]] DragWindow readDragWindow(const YamlValue& value, const ReadContext& context);

/// `ok` or `fail`.
[[nodiscard]] AnswerLoginItem readLoginItem(const YamlValue& value);

/// `cancel` or the name of a folder on the disk, which need not exist.
[[nodiscard]] AnswerSavePanel readSavePanel(const YamlValue& value);

} // namespace sentrel::simulation
