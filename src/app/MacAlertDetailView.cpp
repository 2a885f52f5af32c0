#include "app/MacAlertDetailView.hpp"

#include "alerts/MacAlertsService.hpp"
#include "app/ViewParts.hpp"
#include "foundation/Quietly.hpp"
#include "ports/Calendar.hpp"
#include "ports/ImageCodec.hpp"
#include "ports/Language.hpp"
#include "runtime/Attempted.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr double detailPadding = 16.0;
constexpr double photoWidth = 420.0;

} // namespace

MacAlertDetailView::MacAlertDetailView(MainActor actor, MacAlertsService& alerts, AlertPhotoPreview& preview,
                                       AlertPhotoExport::Ports ports)
    : actor_(actor), alerts_(alerts), ports_(ports), export_(actor, preview, ports)
{
    export_.onChange = [this] { changed(); };
}

void MacAlertDetailView::show(const std::optional<AlertRow>& row)
{
    const bool isSameAlert = row && row_ && row->alert.id == row_->alert.id;
    row_ = row;
    if (isSameAlert) {
        return;
    }
    photo_.reset();
    isLoading_ = false;
    loadTask_.reset();
    if (row) {
        startLoading({row->alert.id, 0});
    }
}

ui::View MacAlertDetailView::body()
{
    return ui::verticalStack({summary().id("summary"), photoPane().id("photoPane"), ui::spacer()}, 12.0,
                             ui::Stack::Alignment::leading)
        .padding(detailPadding);
}

ui::View MacAlertDetailView::failureAlert()
{
    const auto& failure = export_.failure();
    ui::Dialog alert;
    alert.title = failure ? failure->title : "";
    alert.message = failure ? failure->message : "";
    alert.dismiss = weakAction(anchor_.weak(), &MacAlertDetailView::forgetFailure);
    return ui::view(std::move(alert),
                    {ui::button(ports_.language.localized("OK"), {}, ui::Button::Role::cancel).id("ok")})
        .id("photoFailure")
        .hidden(!failure);
}

ui::View MacAlertDetailView::summary()
{
    using Style = ports::Calendar::Style;
    const auto secondary = [](std::string text) {
        return ui::text(std::move(text), ui::Text::Style::callout, ui::Text::Color::secondary);
    };
    return ui::verticalStack(
        {
            ui::text(title(row_->alert.reason, ports_.language), ui::Text::Style::title),
            ui::text(ports_.calendar.formatted(row_->alert.timestamp, Style::longStyle, Style::mediumStyle)).id("date"),
            secondary(row_->alert.deviceName).id("device"),
            secondary(ports_.language.localized(label(row_->storageLocation))).id("storage"),
        },
        4.0, ui::Stack::Alignment::leading);
}

ui::View MacAlertDetailView::photoPane()
{
    if (isLoading_) {
        return ui::view(ui::Progress{ports_.language.localized("Loading photo…"), std::nullopt});
    }
    return photo_ == nullptr ? unavailablePhoto() : loadedPhoto();
}

ui::View MacAlertDetailView::loadedPhoto()
{
    ui::SizeWish size;
    size.maximumWidth = photoWidth;
    ui::Image image{ui::Image::Source::memory, photoLoadID_.alertID.text() + "-" + std::to_string(photoLoadID_.attempt),
                    photo_};
    const auto weak = anchor_.weak();
    return ui::verticalStack(
        {
            ui::view(std::move(image))
                .id("photo")
                .accessibilityLabel(ports_.language.localized("Photo of the alert"))
                .sized(size),
            ui::horizontalStack(
                {
                    ui::button(ports_.language.localized("Preview"), weakAction(weak, &MacAlertDetailView::preview))
                        .id("preview"),
                    symbolButton(ports_.language.localized("Download Photo"), "arrow.down.circle",
                                 weakAction(weak, &MacAlertDetailView::download))
                        .id("downloadPhoto"),
                })
                .disabled(export_.isBusy()),
        },
        8.0, ui::Stack::Alignment::leading);
}

ui::View MacAlertDetailView::unavailablePhoto()
{
    return ui::verticalStack(
        {
            ui::horizontalStack({
                ui::view(symbol("photo.badge.exclamationmark")),
                ui::text(ports_.language.localized("Photo unavailable"), ui::Text::Style::body,
                         ui::Text::Color::secondary),
            }),
            ui::button(ports_.language.localized("Retry"), weakAction(anchor_.weak(), &MacAlertDetailView::retry))
                .id("retry"),
        },
        8.0, ui::Stack::Alignment::leading);
}

void MacAlertDetailView::startLoading(PhotoLoadID loadID)
{
    photoLoadID_ = loadID;
    photo_.reset();
    isLoading_ = true;
    // Cancels the old load, if any.
    loadTask_.emplace();
    loadTask_->add(actor_.spawn(load(loadID)));
}

Async<void> MacAlertDetailView::load(PhotoLoadID loadID)
{
    auto photo = co_await attempted(alerts_.photo(loadID.alertID));
    photo_ = quietly([&] { return readable(std::move(photo).value_or(std::nullopt)); });
    isLoading_ = false;
    changed();
}

AlertPhotoExport::Photo MacAlertDetailView::readable(std::optional<Bytes> photo)
{
    if (!photo || !ports_.imageCodec.pixelSize(*photo)) {
        return nullptr;
    }
    return std::make_shared<const Bytes>(*std::move(photo));
}

void MacAlertDetailView::retry()
{
    if (row_ && !isLoading_) {
        startLoading({row_->alert.id, photoLoadID_.attempt + 1});
        changed();
    }
}

void MacAlertDetailView::preview()
{
    if (row_ && photo_ != nullptr) {
        export_.preview(row_->alert, photo_);
    }
}

void MacAlertDetailView::download()
{
    if (row_ && photo_ != nullptr) {
        export_.save(row_->alert, photo_);
    }
}

void MacAlertDetailView::forgetFailure()
{
    export_.forgetFailure();
}

} // namespace sentrel
