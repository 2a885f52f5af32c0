#pragma once

#include "alerts/AlertRow.hpp"
#include "app/AlertPhotoExport.hpp"
#include "foundation/UUID.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <cstdint>
#include <functional>
#include <optional>

namespace sentrel {

class MacAlertsService;

/// One alert with its photo. Main actor.
class MacAlertDetailView {
public:
    MacAlertDetailView(MainActor actor, MacAlertsService& alerts, AlertPhotoPreview& preview,
                       AlertPhotoExport::Ports ports);
    MacAlertDetailView(const MacAlertDetailView&) = delete;

    /// Called after each change of what is shown.
    std::function<void()> onChange;

    /// Shows this alert, or none. The photo of another alert than before is loaded.
    void show(const std::optional<AlertRow>& row);

    /// Of an alert that is shown.
    [[nodiscard]] ui::View body();

    /// Says why a photo couldn't be saved, whatever is shown meanwhile; hidden unless that happened.
    [[nodiscard]] ui::View failureAlert();

private:
    /// What the photo's loading belongs to: another alert, or another attempt, starts it again.
    struct PhotoLoadID {
        UUID alertID;
        std::int64_t attempt = 0;
    };

    [[nodiscard]] ui::View summary();
    [[nodiscard]] ui::View photoPane();
    [[nodiscard]] ui::View loadedPhoto();
    [[nodiscard]] ui::View unavailablePhoto();
    void startLoading(PhotoLoadID loadID);
    Async<void> load(PhotoLoadID loadID);
    [[nodiscard]] AlertPhotoExport::Photo readable(std::optional<Bytes> photo);
    void retry();
    void preview();
    void download();
    void forgetFailure();
    void changed();

    MainActor actor_;
    MacAlertsService& alerts_;
    AlertPhotoExport::Ports ports_;
    AlertPhotoExport export_;
    std::optional<AlertRow> row_;
    PhotoLoadID photoLoadID_;
    bool isLoading_ = false;
    AlertPhotoExport::Photo photo_; ///< null while it is loaded, and when there is none
    std::optional<TaskBag> loadTask_;
    WeakAnchor<MacAlertDetailView> anchor_{*this};
};

} // namespace sentrel
