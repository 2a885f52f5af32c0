#pragma once

#include "ui/View.hpp"

#include <utility>

namespace sentrel {

/// Turns the Delete key into the delete command for the current selection.
class AlertsDeleteKeyHandler {
public:
    /// `deleteSelection` does nothing without a selection.
    explicit AlertsDeleteKeyHandler(ui::Action deleteSelection) : deleteSelection_(std::move(deleteSelection)) {}

    /// The view, whose window now handles the key.
    [[nodiscard]] ui::View attachedTo(ui::View view) const
    {
        return std::move(view).onKey(ui::Key::deleteKey, deleteSelection_);
    }

private:
    ui::Action deleteSelection_;
};

} // namespace sentrel
