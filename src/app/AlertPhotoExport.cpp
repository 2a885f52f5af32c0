#include "app/AlertPhotoExport.hpp"

#include "app/AlertPhotoPreview.hpp"
#include "foundation/TextFormat.hpp"
#include "ports/Calendar.hpp"
#include "ports/FileSystem.hpp"
#include "ports/HostInfo.hpp"
#include "ports/ImageCodec.hpp"
#include "ports/Language.hpp"
#include "ports/SavePanels.hpp"
#include "runtime/Attempted.hpp"

#include <cerrno>
#include <utility>

namespace sentrel {

namespace {

constexpr std::uint32_t ownersOnly = 0600;
// The default mode: not every volume that holds photos supports another.
constexpr std::nullopt_t asUsual = std::nullopt;

/// Returns 0 or an `errno` value.
int fillFile(ports::FileSystem& files, const std::filesystem::path& path, std::optional<std::uint32_t> mode,
             BytesView content)
{
    int error = 0;
    const auto file = files.create(path, mode, error);
    return file == nullptr ? error : file->write(content);
}

/// Overwrites the file; on failure, restores its content. Returns 0 or an `errno` value.
int overwriteFile(ports::FileSystem& files, const std::filesystem::path& path, std::optional<std::uint32_t> mode,
                  BytesView content)
{
    const bool wasThere = files.exists(path);
    const auto before = files.read(path);
    const int error = fillFile(files, path, mode, content);
    if (error != 0 && before) {
        static_cast<void>(fillFile(files, path, asUsual, *before));
    } else if (error != 0 && !wasThere) {
        files.remove(path);
    }
    return error;
}

/// Writes a temporary file that replaces the target in one step: a failure leaves the old content. The temporary file
/// lies elsewhere, since the save panel's consent covers the chosen file only. If it can't replace the target, on
/// another volume or in a folder closed to new entries, the target is overwritten; its old content is then lost if the
/// process ends meanwhile or the content can't be restored. Returns 0 or an `errno` value.
int writeFile(ports::FileSystem& files, const std::filesystem::path& temporary, const std::filesystem::path& path,
              std::optional<std::uint32_t> mode, BytesView content)
{
    if (fillFile(files, temporary, mode, content) == 0 && files.rename(temporary, path) == 0) {
        return 0;
    }
    files.remove(temporary);
    return overwriteFile(files, path, mode, content);
}

/// The reason of a failed write, for the user: the port's `errno` values have no description.
std::string writeErrorText(int error, ports::Language& language)
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
    start(previewNow(name, std::move(photo)));
}

void AlertPhotoExport::save(const AlertEvent& alert, Photo photo)
{
    // Independent of the user's locale: names sort by date and suit every file system.
    const std::string date = ports_.calendar.formatted(alert.timestamp, "yyyy-MM-dd_HH-mm-ss", "en_US_POSIX");
    start(saveAs("alert_" + date + ".jpg", std::move(photo)));
}

Async<void> AlertPhotoExport::previewNow(std::string name, Photo photo)
{
    const std::filesystem::path file = ports_.host.temporaryDirectory() / name;
    const auto writing = write(file, name, ownersOnly, std::move(photo));
    const auto written = co_await attempted(writing);
    finish(ports_.language.localized("Couldn't Preview Photo"), written.value_or(Written{}));
    if (!failure_) {
        preview_.show(file);
    }
}

Async<void> AlertPhotoExport::saveAs(std::string name, Photo photo)
{
    ports::SavePanelContent content;
    content.title = ports_.language.localized("Save Alert Photo");
    content.allowedContentTypes = {"public.jpeg"};
    content.nameFieldStringValue = name;
    const auto file = co_await ports_.savePanels.run(std::move(content));
    std::optional<Written> written{Written{true, 0}};
    if (file) {
        const auto writing = write(*file, name, asUsual, std::move(photo));
        written = co_await attempted(writing);
    }
    finish(ports_.language.localized("Couldn't Save Photo"), written.value_or(Written{}));
}

Task<AlertPhotoExport::Written> AlertPhotoExport::write(std::filesystem::path file, const std::string& name,
                                                        std::optional<std::uint32_t> mode, Photo photo)
{
    const std::filesystem::path temporary = ports_.host.temporaryDirectory() / (name + ".partial");
    auto work = [&ports = ports_, file = std::move(file), temporary, mode, photo = std::move(photo)]() -> Written {
        const auto jpeg = ports.imageCodec.jpegRepresentation(*photo);
        if (!jpeg) {
            return {};
        }
        return {true, writeFile(ports.files, temporary, file, mode, *jpeg)};
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
    tasks_.add(actor_.spawn(untilItsEnd(std::move(work))));
    changed();
}

/// The buttons work again also when a call has raised.
Async<void> AlertPhotoExport::untilItsEnd(Async<void> work)
{
    try {
        co_await std::move(work);
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        // The panel did not open, or nothing could be said.
    }
    isBusy_ = false;
    changed();
}

void AlertPhotoExport::finish(std::string title, const Written& written)
{
    if (!written.isConverted) {
        failure_ = Failure{std::move(title), ports_.language.localized("The photo could not be converted for saving.")};
    } else if (written.error != 0) {
        failure_ = Failure{std::move(title), writeErrorText(written.error, ports_.language)};
    }
}

} // namespace sentrel
