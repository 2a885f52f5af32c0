#pragma once

#include "alerts/AlertRow.hpp"
#include "app/AlertPhotoExport.hpp"
#include "app/ChangeReporter.hpp"
#include "foundation/UUID.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <cstdint>
#include <optional>

namespace sentrel {

class MacAlertsService;

/// One alert with its photo. Main actor.
class MacAlertDetailView final : public ChangeReporter {
public:
    MacAlertDetailView(MainActor actor, MacAlertsService& alerts, AlertPhotoPreview& preview,
                       AlertPhotoExport::Ports ports);

    /// Shows this alert, or none. Loads the photo if the alert is another one than before.
    void show(const std::optional<AlertRow>& row);

    /// Requires a shown alert.
    [[nodiscard]] ui::View body();

    /// Explains why a photo couldn't be saved, whichever alert is shown; hidden without a failure.
    [[nodiscard]] ui::View failureAlert();

private:
    /// Identifies a load of the photo; a change of either member starts a new one.
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

    MainActor actor_;
    MacAlertsService& alerts_;
    AlertPhotoExport::Ports ports_;
    AlertPhotoExport export_;
    std::optional<AlertRow> row_;
    PhotoLoadID photoLoadID_;
    bool isLoading_ = false;
    AlertPhotoExport::Photo photo_; ///< null while loading, and when there is none
    std::optional<TaskBag> loadTask_;
    WeakAnchor<MacAlertDetailView> anchor_{*this};
};

} // namespace sentrel
