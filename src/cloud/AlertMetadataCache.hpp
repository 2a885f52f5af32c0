#pragma once

#include "cloud/AlertCacheFile.hpp"
#include "runtime/DetachedWork.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Semaphore.hpp"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace sentrel {

namespace ports {
class FileSystem;
class Journal;
} // namespace ports

/// The local mirror of the alerts in the cloud, without their photos, and of what the alert catalog is still owed. It
/// is a cache: whatever befalls the file costs a listing of the database and nothing else. Changes are written a second
/// later, together and off the main thread; what must not get lost is written by `flush`. Main actor only.
class AlertMetadataCache {
public:
    static constexpr const char* fileName = "alert-metadata-cache.json";

    /// What has changed since somebody began to look elsewhere.
    struct Changes {
        std::unordered_set<UUID> ids; ///< alerts that came or went
        bool isAnotherUser = false;   ///< everything went: it belonged to somebody else
    };

    /// Reads the file. A missing or damaged one reads as empty, and so does one of another owner: what one user's
    /// alarms were is nothing that the next user may see, wherever the process died.
    AlertMetadataCache(MainActor actor, ports::FileSystem& files, ports::Journal& journal,
                       std::filesystem::path directory, std::optional<std::string> owner);
    AlertMetadataCache(const AlertMetadataCache&) = delete;

    [[nodiscard]] const AlertMap& alerts() const { return alertCache_.alerts; }

    /// Whether every alert of the database was in the cache once, so that the catalog's changes suffice from then on.
    [[nodiscard]] bool isComplete() const { return alertCache_.isComplete; }
    void setComplete();

    [[nodiscard]] const CatalogDebts& debts() const { return alertCache_.debts; }

    /// Enters alerts or replaces them. That one has a photo, once known, is not forgotten for a record that was fetched
    /// without.
    void insert(AlertMap alerts);
    void setPhoto(const UUID& id, bool hasPhoto);
    void erase(const std::unordered_set<UUID>& ids);

    /// Notes what the catalog has to learn; a later word on an alert replaces an earlier one.
    void oweAdditions(const std::vector<UUID>& ids);
    void oweRemovals(const std::unordered_set<UUID>& ids);

    /// The catalog has learnt these.
    void settle(const CatalogDebts& paid);

    /// The changes from now on, as long as the handle lives.
    [[nodiscard]] std::shared_ptr<const Changes> watch();

    /// The owner has become known.
    void setOwner(std::string owner);

    /// Another user: forgets everything, the file included.
    void startOver(std::string owner);

    /// Returns once everything is on the disk, or can't be written.
    [[nodiscard]] Async<void> flush();

private:
    void markChanged(const UUID& id);
    void persistSoon();
    Async<void> persist();

    MainActor actor_;
    ports::FileSystem& files_;
    ports::Journal& journal_;
    const std::filesystem::path cacheDirectory_;
    AlertCacheContents alertCache_;
    std::vector<std::weak_ptr<Changes>> watches_;
    bool isDirty_ = false;
    // Shared with who waits for it: a process that is taken apart from outside may end that wait after this.
    const std::shared_ptr<Semaphore> hurry_ = std::make_shared<Semaphore>();
    DetachedWork writing_;
    Task<void> persistAlertCacheTask_;
    TaskBag tasks_;
};

} // namespace sentrel
