#pragma once

#include "ui/View.hpp"

#include <cstddef>

namespace sentrel {

namespace ports {
class Language;
}

/// Stands in the detail's place while several alerts are selected.
struct MacAlertsBulkSelectionView {
    std::size_t count = 0;
    ui::Action deleteSelected;

    [[nodiscard]] ui::View body(ports::Language& language) const;
};

} // namespace sentrel
