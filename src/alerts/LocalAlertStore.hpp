#pragma once

#include "alerts/StoredAlert.hpp"
#include "foundation/Bytes.hpp"
#include "runtime/MainActor.hpp"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sentrel {

namespace ports {
class FileSystem;
class HostInfo;
} // namespace ports

/// Keeps alerts and their photos on this Mac: one JSON file and at most one JPEG for each. The folder is read at most
/// once; afterwards every query is answered from memory. Main thread.
class LocalAlertStore {
public:
    /// Alerts kept; saving one more removes the oldest.
    static constexpr std::size_t mostAlerts = 1000;

    LocalAlertStore(MainActor actor, ports::FileSystem& files, ports::HostInfo& host);
    LocalAlertStore(const LocalAlertStore&) = delete;

    /// Writes the alert and its photo, or removes an earlier photo when there is none now; each file is replaced in
    /// one step and is on the medium on return. Throws `std::system_error` when a write fails and
    /// `JsonEncodingError` when the alert has no encoding.
    void save(const AlertEvent& alert, const std::optional<Bytes>& photo, bool pendingUpload);

    /// Marks the alert as waiting, after a failed attempt to upload it. No effect when it isn't here or waits already;
    /// a failed write is ignored.
    void setPendingUpload(const UUID& id);

    /// All alerts, newest first, and by identifier where dates are equal, so that the order is stable.
    [[nodiscard]] std::vector<StoredAlert> alerts();

    /// The same, with the folder first read off the main thread. Repeats the reads and removals that have failed. The
    /// store must outlive the call.
    [[nodiscard]] Async<std::vector<StoredAlert>> alertsInBackground();

    /// Whether no failed read or removal of a file waits to be repeated.
    [[nodiscard]] bool isSettled();

    /// The alerts that wait for upload, newest first.
    [[nodiscard]] std::vector<StoredAlert> alertsWaitingForUpload();

    /// The identifiers of all alerts.
    [[nodiscard]] std::unordered_set<UUID> identifiers();

    /// One alert, without reading the whole folder.
    [[nodiscard]] std::optional<StoredAlert> storedAlert(const UUID& id);

    /// Where the alert's photo is, or would be.
    [[nodiscard]] std::filesystem::path photoFile(const UUID& id);

    /// Removes an alert and its files. The alert is gone at once; the removal of a file that fails is repeated later.
    void remove(const UUID& id);
    void remove(const std::unordered_set<UUID>& ids);

private:
    using Index = std::unordered_map<UUID, StoredAlert>;

    /// The result of reading the folder.
    struct Folder {
        Index index;
        std::vector<std::string> leftovers; ///< names of files left by interrupted writes
        bool isWhole = true;                ///< whether the folder and each alert in it could be read
    };

    [[nodiscard]] std::filesystem::path alertFile(const UUID& id);
    [[nodiscard]] std::filesystem::path fileNamed(const UUID& id, const char* extension);
    void write(const std::filesystem::path& file, BytesView content);
    Index& loadedIndex();
    void prune();
    bool removeFile(const std::filesystem::path& file);
    static std::optional<StoredAlert> readAlert(ports::FileSystem& files, const std::filesystem::path& file);
    static Folder readFolder(ports::FileSystem& files, const std::filesystem::path& directory);
    void take(Folder folder);

    MainActor actor_;
    ports::FileSystem& files_;
    const std::filesystem::path directory_;
    std::optional<Index> index_;
    bool isWhole_ = true;
    std::unordered_set<UUID> removed_; ///< with a file that could not be removed so far
    std::unordered_set<UUID> unsaved_; ///< whose save has failed, and may have left files
};

} // namespace sentrel
