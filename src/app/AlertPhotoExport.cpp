#include "app/AlertPhotoExport.hpp"

#include "app/AlertPhotoPreview.hpp"
#include "foundation/TextFormat.hpp"
#include "platform/Calendar.hpp"
#include "platform/FileSystem.hpp"
#include "platform/HostInfo.hpp"
#include "platform/ImageCodec.hpp"
#include "platform/Language.hpp"
#include "platform/SavePanels.hpp"

#include <cerrno>
#include <utility>

namespace sentrel {

namespace {

constexpr std::uint32_t ownersOnly = 0600;
// Not every volume on which people keep photos can do more.
constexpr std::nullopt_t asUsual = std::nullopt;

/// 0 or an `errno` value.
int fillFile(platform::FileSystem& files, const std::filesystem::path& path, std::optional<std::uint32_t> mode,
             BytesView content)
{
    int error = 0;
    const auto file = files.create(path, mode, error);
    return file == nullptr ? error : file->write(content);
}

/// Writes the file; when that fails, what was there is still there. 0 or an `errno` value.
int writeFile(platform::FileSystem& files, const std::filesystem::path& path, std::optional<std::uint32_t> mode,
              BytesView content)
{
    std::filesystem::path partial = path;
    partial += ".partial";
    int error = fillFile(files, partial, mode, content);
    if (error == 0) {
        error = files.rename(partial, path);
    }
    if (error != 0) {
        files.remove(partial);
    }
    return error;
}

/// Why a file could not be written, for people.
std::string writeErrorText(int error, platform::Language& language)
{
    switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
        return language.localized("You don't have permission to save it there.");
    case ENOSPC:
    case EDQUOT:
        return language.localized("There is not enough space for it there.");
    case ENOENT:
    case ENOTDIR:
        return language.localized("The folder doesn't exist.");
    default:
        return filledIn(language.localized("It could not be written (error %lld)."), error);
    }
}

} // namespace

AlertPhotoExport::AlertPhotoExport(MainActor actor, AlertPhotoPreview& preview, Ports ports)
    : actor_(actor), preview_(preview), ports_(ports), conversions_(actor.scheduler())
{
}

void AlertPhotoExport::forgetFailure()
{
    failure_.reset();
    changed();
}

void AlertPhotoExport::preview(const AlertEvent& alert, Photo photo)
{
    const std::string name = "alert_preview_" + alert.id.text() + ".jpg";
    start(previewNow(ports_.host.temporaryDirectory() / name, std::move(photo)));
}

void AlertPhotoExport::save(const AlertEvent& alert, Photo photo)
{
    // Whatever the user's locale: names sort by date, and every file system takes them.
    const std::string date = ports_.calendar.formatted(alert.timestamp, "yyyy-MM-dd_HH-mm-ss", "en_US_POSIX");
    start(saveAs("alert_" + date + ".jpg", std::move(photo)));
}

Async<void> AlertPhotoExport::previewNow(std::filesystem::path file, Photo photo)
{
    const auto writing = write(file, ownersOnly, std::move(photo));
    const Written written = co_await writing;
    finish(ports_.language.localized("Couldn't Preview Photo"), written);
    if (!failure_) {
        preview_.show(std::move(file));
    }
}

Async<void> AlertPhotoExport::saveAs(std::string name, Photo photo)
{
    platform::SavePanelContent content;
    content.title = ports_.language.localized("Save Alert Photo");
    content.allowedContentTypes = {"public.jpeg"};
    content.nameFieldStringValue = std::move(name);
    auto file = co_await ports_.savePanels.run(std::move(content));
    Written written{true, 0};
    if (file) {
        const auto writing = write(*std::move(file), asUsual, std::move(photo));
        written = co_await writing;
    }
    finish(ports_.language.localized("Couldn't Save Photo"), written);
}

Task<AlertPhotoExport::Written> AlertPhotoExport::write(std::filesystem::path file, std::optional<std::uint32_t> mode,
                                                        Photo photo)
{
    auto work = [&ports = ports_, file = std::move(file), mode, photo = std::move(photo)]() -> Written {
        const auto jpeg = ports.imageCodec.jpegRepresentation(*photo);
        if (!jpeg) {
            return {};
        }
        return {true, writeFile(ports.files, file, mode, *jpeg)};
    };
    return conversions_.start(QualityOfService::userInitiated, std::move(work));
}

void AlertPhotoExport::start(Async<void> work)
{
    if (isBusy_) {
        return;
    }
    isBusy_ = true;
    failure_.reset();
    tasks_.add(actor_.spawn(std::move(work)));
    changed();
}

void AlertPhotoExport::finish(std::string title, const Written& written)
{
    isBusy_ = false;
    if (!written.isConverted) {
        failure_ = Failure{std::move(title), ports_.language.localized("The photo could not be converted for saving.")};
    } else if (written.error != 0) {
        failure_ = Failure{std::move(title), writeErrorText(written.error, ports_.language)};
    }
    changed();
}

void AlertPhotoExport::changed()
{
    if (onChange) {
        onChange();
    }
}

} // namespace sentrel
