#pragma once

#include "ui/View.hpp"

#include <string>

namespace sentrel {

/// A checkbox with its label, with room for a pointer between it and the next row.
struct SpacedCheckboxToggle {
    std::string label;
    ui::Binding<bool> isOn;

    [[nodiscard]] ui::View body() const;
};

} // namespace sentrel
