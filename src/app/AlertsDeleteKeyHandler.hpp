#pragma once

#include "ui/View.hpp"

#include <utility>

namespace sentrel {

/// Turns the Delete key into the delete command for the current selection.
class AlertsDeleteKeyHandler {
public:
    /// The command does nothing without a selection.
    explicit AlertsDeleteKeyHandler(ui::Action deleteSelection) : deleteSelection_(std::move(deleteSelection)) {}

    /// The view, in whose window the key is heard.
    [[nodiscard]] ui::View attachedTo(ui::View view) const
    {
        return std::move(view).onKey(ui::Key::deleteKey, deleteSelection_);
    }

private:
    ui::Action deleteSelection_;
};

} // namespace sentrel
