#pragma once

#include "cloud/AlertCatalog.hpp"
#include "cloud/AlertMetadataCache.hpp"
#include "cloud/UploadPhotoFiles.hpp"
#include "core/AlertEvent.hpp"
#include "ports/CloudError.hpp"
#include "runtime/DetachedWork.hpp"

#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace sentrel {

namespace ports {
class CloudDatabase;
class Journal;
class Language;
} // namespace ports

/// The alerts in the database, with the cache that mirrors them. Main actor only.
class CloudAlerts {
public:
    struct Ports {
        ports::CloudDatabase& database;
        ports::FileSystem& files;
        ports::HostInfo& host;
        ports::Language& language;
        ports::Journal& journal;
    };

    /// The throttling error of the catalog update; the operation itself succeeded.
    using Throttling = std::optional<ports::CloudError>;

    /// The outcome of a deletion.
    struct Deletion {
        std::unordered_set<UUID> gone; ///< no longer in the database, whether deleted now or before
        std::exception_ptr error;      ///< why others are still there; null when none are
        Throttling throttling;
    };

    CloudAlerts(MainActor actor, Ports ports, UploadPhotoFiles::Ports photoPorts, std::filesystem::path cacheDirectory,
                std::optional<std::string> owner);
    CloudAlerts(const CloudAlerts&) = delete;

    [[nodiscard]] std::vector<AlertEvent> cached() const;
    [[nodiscard]] bool holds(const UUID& id) const { return cache_.alerts().contains(id); }

    /// The cached alert; null when there is none. Valid until the next change of the cache.
    [[nodiscard]] const AlertEvent* cached(const UUID& id) const;

    /// As the cache's.
    [[nodiscard]] std::shared_ptr<const AlertMetadataCache::Changes> watch() { return cache_.watch(); }

    /// Returns once the cache is on the disk, or can't be written.
    [[nodiscard]] Async<void> flush() { return cache_.flush(); }

    /// As `CloudKitService::uploadAlert`, but without asking whether the account is available.
    [[nodiscard]] Async<Throttling> upload(AlertEvent alert, std::optional<Bytes> photo);
    [[nodiscard]] Async<Throttling> refresh();
    [[nodiscard]] Async<std::optional<Bytes>> photo(UUID id);

    /// In one request. Throws only a `CancellationError`.
    [[nodiscard]] Async<Deletion> remove(std::unordered_set<UUID> ids);

    /// `setOwner` names the user once known; `startOver` drops everything for another user.
    void setOwner(std::string owner) { cache_.setOwner(std::move(owner)); }
    void startOver(std::string owner);

private:
    [[nodiscard]] Async<void> save(ports::CloudRecord record);
    [[nodiscard]] Async<Throttling> settleDebts(std::optional<ports::CloudRecord> catalog);
    void forget(const std::unordered_set<UUID>& ids);

    MainActor actor_;
    Ports ports_;
    AlertMetadataCache cache_;
    AlertCatalog catalog_;
    UploadPhotoFiles photoFiles_;
    std::unordered_set<UUID> unusable_;
    DetachedWork reading_;
};

} // namespace sentrel
