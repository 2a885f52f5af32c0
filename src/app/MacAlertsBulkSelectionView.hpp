#pragma once

#include "ui/View.hpp"

#include <cstddef>

namespace sentrel {

namespace ports {
class Language;
}

/// Replaces the detail while several alerts are selected.
struct MacAlertsBulkSelectionView {
    std::size_t count = 0;
    ui::Action deleteSelected;

    [[nodiscard]] ui::View body(ports::Language& language) const;
};

} // namespace sentrel
