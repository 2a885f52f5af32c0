#include "app/MacAlertsContentView.hpp"

#include "alerts/MacAlertsService.hpp"
#include "app/AlertsDeleteKeyHandler.hpp"
#include "app/MacAlertsBulkSelectionView.hpp"
#include "app/ViewParts.hpp"
#include "foundation/TextFormat.hpp"
#include "ports/ApplicationNotifications.hpp"
#include "ports/Language.hpp"
#include "runtime/WeakCall.hpp"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

namespace sentrel {

namespace {

/// After these notifications a date may need another heading.
constexpr std::array regroupingNotifications{"NSCalendarDayChangedNotification",
                                             "NSSystemTimeZoneDidChangeNotification"};

constexpr double sidebarWidth = 260.0;
constexpr double messagePadding = 8.0;

} // namespace

MacAlertsContentView::MacAlertsContentView(Collaborators collaborators)
    : with_(collaborators),
      rows_(with_.alerts, with_.calendar, with_.language),
      detail_(with_.actor, with_.alerts, with_.preview,
              {with_.calendar, with_.files, with_.host, with_.imageCodec, with_.language, with_.savePanels})
{
    detail_.onChange = [this] { changed(); };
    observations_.push_back(with_.alerts.alerts.observe([this](const auto&) { alertsChanged(); }));
    follow(with_.alerts.errorMessage);
    follow(with_.alerts.infoMessage);
    follow(with_.alerts.hasLoadedInitialAlerts);
    for (const char* const name : regroupingNotifications) {
        registrations_.push_back(
            with_.notifications.observe(name, weakCall(with_.actor, anchor_.weak(), &MacAlertsContentView::regroup)));
    }
}

void MacAlertsContentView::appeared()
{
    // A window opened again must not restart the first load of the list and delay it.
    if (with_.alerts.hasLoadedInitialAlerts || !with_.alerts.isLoading) {
        with_.alerts.startRefresh();
    }
}

ui::View MacAlertsContentView::body()
{
    const AlertsDeleteKeyHandler deleteKey{weakAction(anchor_.weak(), &MacAlertsContentView::askToDelete)};
    return deleteKey.attachedTo(
        content().attach(toolbar()).attach(deleteConfirmation()).attach(detail_.failureAlert()));
}

ui::View MacAlertsContentView::content()
{
    if (!with_.alerts.hasLoadedInitialAlerts) {
        return ui::verticalStack(
            {ui::spacer(), ui::view(ui::Progress{localized("Loading alerts…"), std::nullopt}), ui::spacer()});
    }
    if (!hasList()) {
        return ui::verticalStack(
            {messages(), emptyPane("bell.slash", localized("No Alerts Yet"),
                                   localized("Arm Sentrel on this Mac. When a trigger fires, alerts appear here."))});
    }
    ui::SplitView split{weakBinding(anchor_.weak(), isSidebarShown_, &MacAlertsContentView::setSidebarShown)};
    return ui::view(std::move(split), {sidebar().id("sidebar"), ui::verticalStack({detail()}).id("detail")});
}

ui::View MacAlertsContentView::sidebar()
{
    ui::List list;
    list.mode = ui::List::Selection::multiple;
    list.selection = weakBinding(anchor_.weak(), selection_, &MacAlertsContentView::select);
    ui::SizeWish size;
    size.width = sidebarWidth;
    return ui::verticalStack(
               {messages(),
                ui::view(std::move(list), rows_.sections()).id("alerts").accessibilityLabel(localized("Alert List"))},
               0.0, ui::Stack::Alignment::leading)
        .sized(size);
}

ui::View MacAlertsContentView::detail()
{
    if (selection_.empty()) {
        return emptyPane("bell", localized("Select an Alert"),
                         localized("Choose one or more alerts to view details or delete."))
            .id("none");
    }
    if (selection_.size() == 1) {
        return detail_.body().id("alert");
    }
    return MacAlertsBulkSelectionView{selection_.size(), weakAction(anchor_.weak(), &MacAlertsContentView::askToDelete)}
        .body(with_.language)
        .id("bulk");
}

ui::View MacAlertsContentView::messages()
{
    const auto& info = with_.alerts.infoMessage.get();
    const auto& error = with_.alerts.errorMessage.get();
    return ui::verticalStack(
               {
                   ui::text(info.value_or(""), ui::Text::Style::callout, ui::Text::Color::secondary)
                       .id("infoMessage")
                       .hidden(!info),
                   warning(error.value_or("")).id("errorMessage").hidden(!error),
               },
               4.0, ui::Stack::Alignment::leading)
        .id("messages")
        .padding(messagePadding)
        .hidden(!info && !error);
}

ui::View MacAlertsContentView::toolbar()
{
    const auto weak = anchor_.weak();
    const std::string sidebarHelp = localized(isSidebarShown_ ? "Hide Sidebar" : "Show Sidebar");
    const std::string deleteTitle = localized(selection_.size() > 1 ? "Delete Selected Alerts" : "Delete Alert");
    return ui::view(
        ui::Toolbar{},
        {
            symbolButton(localized("Toggle Sidebar"), "sidebar.left",
                         weakAction(weak, &MacAlertsContentView::toggleSidebar))
                .id("toggleSidebar")
                .help(sidebarHelp)
                .disabled(!hasList()),
            symbolButton(localized("Refresh"), "arrow.clockwise", weakAction(weak, &MacAlertsContentView::refresh))
                .id("refresh"),
            symbolButton(deleteTitle, "trash", weakAction(weak, &MacAlertsContentView::askToDelete))
                .id("delete")
                .disabled(selection_.empty()),
        });
}

ui::View MacAlertsContentView::deleteConfirmation()
{
    const auto weak = anchor_.weak();
    const bool isOne = selection_.size() == 1;
    ui::Dialog question;
    question.kind = ui::Dialog::Kind::confirmation;
    question.title = localized(isOne ? "Delete this alert?" : "Delete selected alerts?");
    question.message = isOne ? localized("This alert will be permanently removed.")
                             : filledIn(localized("%lld alerts will be permanently removed."),
                                        static_cast<std::int64_t>(selection_.size()));
    question.dismiss = weakAction(weak, &MacAlertsContentView::closeConfirmation);
    return ui::view(std::move(question),
                    {
                        ui::button(localized("Delete"), weakAction(weak, &MacAlertsContentView::deleteSelected),
                                   ui::Button::Role::destructive)
                            .id("confirm"),
                        ui::button(localized("Cancel"), {}, ui::Button::Role::cancel).id("cancel"),
                    })
        .id("deleteConfirmation")
        .hidden(!isConfirmingDeletion_);
}

std::string MacAlertsContentView::localized(std::string_view text)
{
    return with_.language.localized(text);
}

bool MacAlertsContentView::hasList() const
{
    const auto& alerts = with_.alerts.alerts.get();
    return with_.alerts.hasLoadedInitialAlerts && alerts != nullptr && !alerts->empty();
}

void MacAlertsContentView::alertsChanged()
{
    showSelected();
    changed();
}

void MacAlertsContentView::regroup()
{
    rows_.forget();
    changed();
}

void MacAlertsContentView::select(std::set<std::string> rows)
{
    selection_ = std::move(rows);
    showSelected();
    changed();
}

void MacAlertsContentView::showSelected()
{
    std::set<std::string> present;
    std::optional<AlertRow> last;
    if (!selection_.empty() && with_.alerts.alerts.get() != nullptr) {
        for (const AlertRow& row : *with_.alerts.alerts.get()) {
            if (auto id = row.alert.id.text(); selection_.contains(id)) {
                present.insert(std::move(id));
                last = row;
            }
        }
    }
    // Alerts deleted here or on another Mac leave the selection.
    selection_ = std::move(present);
    isConfirmingDeletion_ = isConfirmingDeletion_ && !selection_.empty();
    detail_.show(selection_.size() == 1 ? last : std::nullopt);
}

void MacAlertsContentView::refresh()
{
    with_.alerts.startRefresh();
}

void MacAlertsContentView::toggleSidebar()
{
    setSidebarShown(!isSidebarShown_);
}

void MacAlertsContentView::setSidebarShown(bool isShown)
{
    isSidebarShown_ = isShown;
    changed();
}

void MacAlertsContentView::askToDelete()
{
    if (!selection_.empty()) {
        isConfirmingDeletion_ = true;
        changed();
    }
}

void MacAlertsContentView::deleteSelected()
{
    std::unordered_set<UUID> ids;
    for (const std::string& row : selection_) {
        if (const auto id = UUID::parse(row)) {
            ids.insert(*id);
        }
    }
    select({});
    with_.alerts.deleteAlerts(ids);
}

void MacAlertsContentView::closeConfirmation()
{
    isConfirmingDeletion_ = false;
    changed();
}

} // namespace sentrel
