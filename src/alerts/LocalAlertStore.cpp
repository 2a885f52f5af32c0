#include "alerts/LocalAlertStore.hpp"

#include "ports/DurableFile.hpp"
#include "ports/FileSystem.hpp"
#include "ports/HostInfo.hpp"
#include "runtime/Detached.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace sentrel {

namespace {

/// Only the user may read alerts and photos.
constexpr std::uint32_t directoryMode = 0700;
constexpr std::uint32_t fileMode = 0600;

constexpr const char* alertExtension = ".json";
constexpr const char* photoExtension = ".jpg";

std::filesystem::path storeDirectory(ports::HostInfo& host)
{
    const auto support = host.applicationSupportDirectory();
    return support.value_or(host.temporaryDirectory()) / host.bundleIdentifier().value_or("Sentrel") / "Alerts";
}

std::filesystem::path pathOf(const std::filesystem::path& directory, const UUID& id, const char* extension)
{
    return directory / (id.text() + extension);
}

bool isNewer(const StoredAlert& left, const StoredAlert& right)
{
    if (left.alert.timestamp != right.alert.timestamp) {
        return left.alert.timestamp > right.alert.timestamp;
    }
    return left.alert.id < right.alert.id;
}

/// Whether the name is that of a temporary file left by an interrupted write of the store.
bool isLeftover(const std::filesystem::path& name)
{
    const std::filesystem::path target = name.stem();
    return name.extension() == ports::temporaryExtension &&
           (target.extension() == alertExtension || target.extension() == photoExtension) &&
           UUID::parse(target.stem().string());
}

std::optional<StoredAlert> alertIn(BytesView content)
{
    const auto document = parseJson(content);
    return document ? decodeStoredAlert(*document) : std::nullopt;
}

std::vector<StoredAlert> sorted(const std::unordered_map<UUID, StoredAlert>& index)
{
    std::vector<StoredAlert> alerts;
    alerts.reserve(index.size());
    for (const auto& [id, stored] : index) {
        alerts.push_back(stored);
    }
    std::ranges::sort(alerts, isNewer);
    return alerts;
}

} // namespace

LocalAlertStore::LocalAlertStore(MainActor actor, ports::FileSystem& files, ports::HostInfo& host)
    : actor_(actor), files_(files), directory_(storeDirectory(host))
{
}

void LocalAlertStore::save(const AlertEvent& alert, const std::optional<Bytes>& photo, bool pendingUpload)
{
    const StoredAlert stored{alert, pendingUpload};
    removed_.erase(alert.id);
    unsaved_.insert(alert.id);
    write(alertFile(alert.id), bytesOf(encodeJson(encodeStoredAlert(stored))));
    if (photo) {
        write(photoFile(alert.id), *photo);
    } else {
        removeFile(pathOf(directory_, alert.id, photoExtension));
    }
    unsaved_.erase(alert.id);
    if (index_) {
        index_->insert_or_assign(alert.id, stored);
    }
    prune();
}

void LocalAlertStore::setPendingUpload(const UUID& id)
{
    std::optional<StoredAlert> stored = storedAlert(id);
    if (!stored || stored->pendingUpload) {
        return;
    }
    stored->pendingUpload = true;
    // If this fails, the next launch finds the alert unmarked and uploads it all the same.
    const std::string document = encodeJson(encodeStoredAlert(*stored));
    static_cast<void>(ports::writeDurably(files_, alertFile(id), bytesOf(document), fileMode));
    if (index_) {
        index_->insert_or_assign(id, *std::move(stored));
    }
}

std::vector<StoredAlert> LocalAlertStore::alerts()
{
    return sorted(loadedIndex());
}

Async<std::vector<StoredAlert>> LocalAlertStore::alertsInBackground()
{
    for (const UUID& id : std::unordered_set<UUID>{removed_}) {
        remove(id);
    }
    if (!index_ || !isWhole_) {
        auto reading = detached(actor_.scheduler(), QualityOfService::userInitiated,
                                [&files = files_, directory = directory_] { return readFolder(files, directory); });
        Folder folder = co_await reading;
        take(std::move(folder));
    }
    co_return sorted(*index_);
}

std::vector<StoredAlert> LocalAlertStore::alertsWaitingForUpload()
{
    std::vector<StoredAlert> waiting;
    for (const auto& [id, stored] : loadedIndex()) {
        if (stored.pendingUpload) {
            waiting.push_back(stored);
        }
    }
    std::ranges::sort(waiting, isNewer);
    return waiting;
}

std::unordered_set<UUID> LocalAlertStore::identifiers()
{
    std::unordered_set<UUID> ids;
    for (const auto& [id, stored] : loadedIndex()) {
        ids.insert(id);
    }
    return ids;
}

std::optional<StoredAlert> LocalAlertStore::storedAlert(const UUID& id)
{
    if (index_) {
        if (const auto found = index_->find(id); found != index_->end()) {
            return found->second;
        }
    }
    return index_ && isWhole_ ? std::nullopt : readAlert(files_, alertFile(id));
}

std::filesystem::path LocalAlertStore::photoFile(const UUID& id)
{
    return fileNamed(id, photoExtension);
}

void LocalAlertStore::remove(const UUID& id)
{
    if (index_) {
        index_->erase(id);
    }
    unsaved_.erase(id);
    const bool isGone = removeFile(pathOf(directory_, id, alertExtension));
    if (removeFile(pathOf(directory_, id, photoExtension)) && isGone) {
        removed_.erase(id);
    } else {
        removed_.insert(id);
    }
}

bool LocalAlertStore::removeFile(const std::filesystem::path& file)
{
    try {
        const int error = files_.remove(file);
        return error == 0 || error == ENOENT;
    } catch (...) {
        return false;
    }
}

void LocalAlertStore::remove(const std::unordered_set<UUID>& ids)
{
    for (const UUID& id : ids) {
        if (!index_ || index_->contains(id) || unsaved_.contains(id)) {
            remove(id);
        }
    }
}

std::filesystem::path LocalAlertStore::alertFile(const UUID& id)
{
    return fileNamed(id, alertExtension);
}

std::filesystem::path LocalAlertStore::fileNamed(const UUID& id, const char* extension)
{
    // Each time: a folder deleted by hand must not cost the next alert.
    files_.createDirectories(directory_, directoryMode);
    return pathOf(directory_, id, extension);
}

void LocalAlertStore::write(const std::filesystem::path& file, BytesView content)
{
    const int error = ports::writeDurably(files_, file, content, fileMode);
    if (error != 0) {
        throw std::system_error{error, std::generic_category(), "saving " + file.filename().string()};
    }
}

LocalAlertStore::Index& LocalAlertStore::loadedIndex()
{
    if (!index_) {
        take(readFolder(files_, directory_));
    }
    return *index_;
}

bool LocalAlertStore::isSettled()
{
    loadedIndex();
    return isWhole_ && removed_.empty();
}

void LocalAlertStore::prune()
{
    if (loadedIndex().size() <= mostAlerts) {
        return;
    }
    const std::vector<StoredAlert> newestFirst = alerts();
    for (std::size_t i = mostAlerts; i < newestFirst.size(); ++i) {
        remove(newestFirst[i].alert.id);
    }
}

std::optional<StoredAlert> LocalAlertStore::readAlert(ports::FileSystem& files, const std::filesystem::path& file)
{
    const auto content = files.read(file);
    return content ? alertIn(*content) : std::nullopt;
}

LocalAlertStore::Folder LocalAlertStore::readFolder(ports::FileSystem& files, const std::filesystem::path& directory)
{
    Folder folder;
    files.createDirectories(directory, directoryMode);
    const auto names = files.list(directory);
    if (!names) {
        folder.isWhole = false;
        return folder;
    }
    for (const std::filesystem::path name : *names) {
        if (isLeftover(name)) {
            folder.leftovers.push_back(name.string());
        }
        if (name.extension() != alertExtension) {
            continue;
        }
        const auto content = files.read(directory / name);
        if (!content) {
            folder.isWhole = false;
        } else if (auto stored = alertIn(*content)) {
            const UUID id = stored->alert.id;
            folder.index.insert_or_assign(id, *std::move(stored));
        }
    }
    return folder;
}

/// Deletes the leftovers and takes the alerts over that are not known yet. Main thread only, where no write is under
/// way: a background reading may have listed the temporary file of one that was.
void LocalAlertStore::take(Folder folder)
{
    for (const std::string& name : folder.leftovers) {
        files_.remove(directory_ / name);
    }
    std::erase_if(folder.index, [this](const auto& entry) { return removed_.contains(entry.first); });
    if (!index_) {
        index_ = std::move(folder.index);
        isWhole_ = folder.isWhole;
        return;
    }
    // An index loaded in the meantime includes the saves and deletions since.
    isWhole_ = isWhole_ || folder.isWhole;
    for (auto& [id, stored] : folder.index) {
        if (!index_->contains(id) && files_.exists(alertFile(id))) {
            index_->emplace(id, std::move(stored));
        }
    }
}

} // namespace sentrel
