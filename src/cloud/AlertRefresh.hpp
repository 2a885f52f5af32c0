#pragma once

#include "cloud/AlertCatalog.hpp"
#include "cloud/AlertMetadataCache.hpp"
#include "ports/CloudDatabase.hpp"

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace sentrel {

/// One refresh of the cache from the database. Normally fetches only the changes that the catalog shows; queries the
/// whole database only while the cache has never been complete or the catalog is missing. Uploads, deletions and
/// refreshes that end meanwhile are newer than the results and take precedence. Main actor only; lives on the frame of
/// the coroutine that runs it.
class AlertRefresh {
public:
    /// Records per request: the server accepts 400; smaller pages keep the main thread responsive.
    static constexpr std::size_t batchSize = 200;

    /// `unusable` holds the alerts whose records can't be parsed, so that they aren't fetched repeatedly.
    AlertRefresh(Scheduler& scheduler, ports::CloudDatabase& database, AlertCatalog& catalog, AlertMetadataCache& cache,
                 std::unordered_set<UUID>& unusable)
        : scheduler_(scheduler), database_(database), catalog_(catalog), cache_(cache), unusable_(unusable)
    {
    }

    /// Throws a failed request's error, with the cache unchanged. Returns the catalog's throttling error, if any.
    [[nodiscard]] Async<std::optional<ports::CloudError>> run();

private:
    [[nodiscard]] Async<std::shared_ptr<ports::CloudRecord>> readCatalog();
    [[nodiscard]] Async<void> queryAll();
    [[nodiscard]] Async<void> fetch(std::vector<UUID> ids);
    [[nodiscard]] std::vector<UUID> unknownIDs();
    void note(const std::string& name, const ports::CloudRecordResult& result);
    void apply(const std::unordered_set<UUID>& newer);
    void dropDeleted(const std::unordered_set<UUID>& newer);
    void oweUnlisted();

    Scheduler& scheduler_;
    ports::CloudDatabase& database_;
    AlertCatalog& catalog_;
    AlertMetadataCache& cache_;
    std::unordered_set<UUID>& unusable_;

    bool hasList_ = false; ///< the catalog that was read had a list
    bool hasQueried_ = false;
    AlertMap found_;
    std::unordered_set<UUID> unreadable_; ///< exist, but the server couldn't return them this time
    std::unordered_set<UUID> gone_;
};

} // namespace sentrel
