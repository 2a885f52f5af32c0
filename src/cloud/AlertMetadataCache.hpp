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

/// The local mirror of the alerts in the cloud, without their photos, and of the changes owed to the alert catalog.
/// Losing the file costs only a listing of the database. Changes are written together, a second later and off the main
/// thread; call `flush` for those that must not get lost. Main actor only.
class AlertMetadataCache {
public:
    static constexpr const char* fileName = "alert-metadata-cache.json";

    /// Changes to the cache since a call of `watch`.
    struct Changes {
        std::unordered_set<UUID> ids;    ///< alerts inserted or erased
        std::unordered_set<UUID> photos; ///< alerts whose photo was found or missed
        bool isAnotherUser = false;      ///< the cache was emptied for another user
    };

    /// Reads the file. A missing or damaged file reads as empty, and so does another owner's: no user may see a former
    /// user's alarms, even if the process died while the user changed.
    AlertMetadataCache(MainActor actor, ports::FileSystem& files, ports::Journal& journal,
                       std::filesystem::path directory, std::optional<std::string> owner);
    AlertMetadataCache(const AlertMetadataCache&) = delete;

    [[nodiscard]] const AlertMap& alerts() const { return alertCache_.alerts; }

    /// Whether every alert of the database was in the cache once; the catalog's changes suffice from then on.
    [[nodiscard]] bool isComplete() const { return alertCache_.isComplete; }
    void setComplete();

    [[nodiscard]] const CatalogDebts& debts() const { return alertCache_.debts; }

    /// Inserts or replaces alerts. A known photo is kept when the new record was fetched without one.
    void insert(AlertMap alerts);
    void setPhoto(const UUID& id, bool hasPhoto);
    void erase(const std::unordered_set<UUID>& ids);

    /// Notes changes to make to the catalog; for each alert the latest call counts.
    void oweAdditions(const std::vector<UUID>& ids);
    void oweRemovals(const std::unordered_set<UUID>& ids);

    /// Removes the debts paid.
    void settle(const CatalogDebts& paid);

    /// Collects the changes from now on, as long as the handle lives.
    [[nodiscard]] std::shared_ptr<const Changes> watch();

    /// Names the alerts' owner.
    void setOwner(std::string owner);

    /// Forgets everything, the file included, for another user.
    void startOver(std::string owner);

    /// Returns once all changes are on the disk, or could not be written.
    [[nodiscard]] Async<void> flush();

private:
    /// A save: the alerts that have changed since the one before, and all else.
    struct Save {
        AlertCacheContents rest; ///< without alerts
        bool startsOver = false; ///< the earlier alerts were another user's
        std::vector<AlertEvent> changed;
        std::vector<UUID> erased;
    };

    static int write(ports::FileSystem& files, const std::filesystem::path& directory, AlertCacheEncoder& encoder,
                     const Save& save);
    [[nodiscard]] Save takeSave();
    void markChanged(const UUID& id, std::unordered_set<UUID> Changes::* kind = &Changes::ids);
    void persistSoon();
    Async<void> persist();

    MainActor actor_;
    ports::FileSystem& files_;
    ports::Journal& journal_;
    const std::filesystem::path cacheDirectory_;
    AlertCacheContents alertCache_;
    std::vector<std::weak_ptr<Changes>> watches_;
    bool isDirty_ = false;
    bool startsOver_ = false;
    std::unordered_set<UUID> unsaved_; // alerts that were inserted, changed or erased since the last save
    std::shared_ptr<AlertCacheEncoder> encoder_ = std::make_shared<AlertCacheEncoder>(); // used by one save at a time
    // Shared with the waiting coroutine, which may outlive this object when the process is torn down.
    const std::shared_ptr<Semaphore> hurry_ = std::make_shared<Semaphore>();
    DetachedWork writing_;
    Task<void> persistAlertCacheTask_;
    TaskBag tasks_;
};

} // namespace sentrel
