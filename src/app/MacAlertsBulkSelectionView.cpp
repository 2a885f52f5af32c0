#include "app/MacAlertsBulkSelectionView.hpp"

#include "app/ViewParts.hpp"
#include "foundation/TextFormat.hpp"
#include "ports/Language.hpp"

namespace sentrel {

ui::View MacAlertsBulkSelectionView::body(ports::Language& language) const
{
    const std::string title = filledIn(language.localized("%lld Alerts Selected"), static_cast<std::int64_t>(count));
    return ui::verticalStack({
        ui::spacer(),
        ui::text(title, ui::Text::Style::title).id("count"),
        symbolButton(language.localized("Delete Selected"), "trash", deleteSelected, ui::Button::Role::destructive)
            .id("deleteSelected"),
        ui::spacer(),
    });
}

} // namespace sentrel
