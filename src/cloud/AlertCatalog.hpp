#pragma once

#include "cloud/AlertMetadataCache.hpp"
#include "platform/CloudError.hpp"
#include "platform/CloudRecord.hpp"
#include "runtime/Async.hpp"

#include <cstddef>
#include <optional>
#include <unordered_set>

namespace sentrel {

namespace platform {
class CloudDatabase;
}

/// The list of all alerts in the database: one record that every device reads instead of querying for thousands of
/// alerts, and changes by reading it, merging and saving unless it has changed. Whoever saves or deletes an alert tells
/// the catalog afterwards; what can't be told at once is owed, and paid with the next change. Main actor only.
class AlertCatalog {
public:
    static constexpr const char* recordType = "AlertCatalog";
    static constexpr const char* recordName = "alert-catalog";

    /// A list of texts: the alerts' identifiers in upper case, in the order in which they were added.
    static constexpr const char* alertIDsField = "alertIDs";

    /// Non-zero once identifiers have fallen off the list: from then on absence doesn't mean deletion.
    static constexpr const char* isTruncatedField = "isTruncated";

    /// So many identifiers are kept, the newest: a record holds 1 MB, and each takes 36 bytes and some.
    static constexpr std::size_t mostIdentifiers = 20'000;

    struct Contents {
        std::unordered_set<UUID> ids;
        bool isTruncated = false;
    };

    AlertCatalog(platform::CloudDatabase& database, AlertMetadataCache& cache) : database_(database), cache_(cache) {}

    /// The catalog's record; a new and empty one when there is none. Throws what the request throws.
    [[nodiscard]] static Async<platform::CloudRecord> read(platform::CloudDatabase& database);

    /// What an attempt to read the catalog came to.
    struct Reading {
        std::optional<platform::CloudRecord> record;    ///< none when the request failed
        std::optional<platform::CloudError> throttling; ///< by which the server asked for patience
    };
    [[nodiscard]] static Async<Reading> tryToRead(platform::CloudDatabase& database);

    /// What the record lists; none when it has no such list, so that nothing follows from it.
    [[nodiscard]] static std::optional<Contents> contentsOf(const platform::CloudRecord& record);

    /// Pays what is owed. A failure leaves the debt for the next time; only a `CancellationError` is thrown. `fresh` is
    /// the record as it has just been read. Gives the error by which the server asked for patience.
    [[nodiscard]] Async<std::optional<platform::CloudError>> payDebts(std::optional<platform::CloudRecord> fresh);

private:
    platform::CloudDatabase& database_;
    AlertMetadataCache& cache_;
};

} // namespace sentrel
