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

/// One refresh of the cache from the database. The catalog tells what came and went since the last one, so that as many
/// requests are made as there are changes; the whole database is queried only while the cache has never been complete,
/// or the catalog is missing. What is uploaded, deleted or refreshed meanwhile is newer than what is found here, and
/// stays. Main actor only; lives on the frame of the coroutine that runs it.
class AlertRefresh {
public:
    /// A batch: the server takes 400 records in a request, and pages of this size don't hold up the main thread.
    static constexpr std::size_t batchSize = 200;

    /// `unusable`: alerts whose records can't be read, so that they aren't fetched again and again.
    AlertRefresh(Scheduler& scheduler, ports::CloudDatabase& database, AlertCatalog& catalog, AlertMetadataCache& cache,
                 std::unordered_set<UUID>& unusable)
        : scheduler_(scheduler), database_(database), catalog_(catalog), cache_(cache), unusable_(unusable)
    {
    }

    /// Throws what the requests throw, and then has changed nothing. Gives the error by which the server asked for
    /// patience with the catalog.
    [[nodiscard]] Async<std::optional<ports::CloudError>> run();

private:
    [[nodiscard]] Async<std::shared_ptr<ports::CloudRecord>> readCatalog();
    [[nodiscard]] Async<void> queryAll();
    [[nodiscard]] Async<void> fetch(std::vector<UUID> ids);
    [[nodiscard]] std::vector<UUID> unknownIDs() const;
    void note(const std::string& name, const ports::CloudRecordResult& result);
    void apply(const std::unordered_set<UUID>& newer);
    void dropDeleted(const std::unordered_set<UUID>& newer);
    void oweUnlisted();

    Scheduler& scheduler_;
    ports::CloudDatabase& database_;
    AlertCatalog& catalog_;
    AlertMetadataCache& cache_;
    std::unordered_set<UUID>& unusable_;

    std::optional<AlertCatalog::Contents> listed_;
    bool hasQueried_ = false;
    AlertMap found_;
    std::unordered_set<UUID> unreadable_; ///< they exist, but the server couldn't give them this time
    std::unordered_set<UUID> gone_;
};

} // namespace sentrel
