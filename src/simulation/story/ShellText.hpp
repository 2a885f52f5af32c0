#pragma once

#include "simulation/stage/ShellAction.hpp"

#include <string>

namespace sentrel::simulation {

// One sentence of the story for each action of a person.

[[nodiscard]] std::string describe(const UseMenu& action);
[[nodiscard]] std::string describe(const ClickOn& action);
[[nodiscard]] std::string describe(const TypeText& action);
[[nodiscard]] std::string describe(const PressKey& action);
[[nodiscard]] std::string describe(const MoveSlider& action);
[[nodiscard]] std::string describe(const SelectRows& action);
[[nodiscard]] std::string describe(const OpenWindow& action);
[[nodiscard]] std::string describe(const CloseWindow& action);
[[nodiscard]] std::string describe(const DragWindow& action);
[[nodiscard]] std::string describe(const AnswerLoginItem& action);
[[nodiscard]] std::string describe(const AnswerSavePanel& action);

} // namespace sentrel::simulation
