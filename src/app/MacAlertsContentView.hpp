#pragma once

#include "app/AlertListRows.hpp"
#include "app/ChangeReporter.hpp"
#include "app/MacAlertDetailView.hpp"
#include "ports/Registration.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel {

namespace ports {
class ApplicationNotifications;
}

/// The alerts window: the list of alerts, and the detail of the selection. Main actor.
class MacAlertsContentView final : public ChangeReporter {
public:
    struct Collaborators {
        MainActor actor;
        MacAlertsService& alerts;
        AlertPhotoPreview& preview;
        ports::Calendar& calendar;
        ports::FileSystem& files;
        ports::HostInfo& host;
        ports::ImageCodec& imageCodec;
        ports::Language& language;
        ports::SavePanels& savePanels;
        ports::ApplicationNotifications& notifications;
    };

    explicit MacAlertsContentView(Collaborators collaborators);

    /// Call when the window is about to be shown: updates the list.
    void appeared();

    [[nodiscard]] ui::View body();

private:
    [[nodiscard]] ui::View content();
    [[nodiscard]] ui::View sidebar();
    [[nodiscard]] ui::View detail();
    [[nodiscard]] ui::View messages();
    [[nodiscard]] ui::View toolbar();
    [[nodiscard]] ui::View deleteConfirmation();
    [[nodiscard]] std::string localized(std::string_view text);
    [[nodiscard]] bool hasList() const;
    void alertsChanged();
    void regroup();
    void select(std::set<std::string> rows);
    void showSelected();
    void refresh();
    void toggleSidebar();
    void setSidebarShown(bool isShown);
    void askToDelete();
    void deleteSelected();
    void closeConfirmation();

    Collaborators with_;
    AlertListRows rows_;
    MacAlertDetailView detail_;
    std::set<std::string> selection_;
    bool isConfirmingDeletion_ = false;
    bool isSidebarShown_ = true;
    std::vector<ports::RegistrationPtr> registrations_;
    WeakAnchor<MacAlertsContentView> anchor_{*this};
};

} // namespace sentrel
