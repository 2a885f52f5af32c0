#pragma once

#include "cloud/AlertMetadataCache.hpp"
#include "ports/CloudError.hpp"
#include "ports/CloudRecord.hpp"
#include "runtime/Async.hpp"

#include <cstddef>
#include <optional>
#include <unordered_set>

namespace sentrel {

namespace ports {
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

    AlertCatalog(ports::CloudDatabase& database, AlertMetadataCache& cache) : database_(database), cache_(cache) {}

    /// The catalog's record; a new and empty one when there is none. Throws what the request throws.
    [[nodiscard]] static Async<ports::CloudRecord> read(ports::CloudDatabase& database);

    /// What an attempt to read the catalog came to.
    struct Reading {
        std::optional<ports::CloudRecord> record;    ///< none when the request failed
        std::optional<ports::CloudError> throttling; ///< by which the server asked for patience
    };
    [[nodiscard]] static Async<Reading> tryToRead(ports::CloudDatabase& database);

    /// What the record lists; none when it has no such list, so that nothing follows from it.
    [[nodiscard]] static std::optional<Contents> contentsOf(const ports::CloudRecord& record);

    /// Pays what is owed. A failure leaves the debt for the next time; only a `CancellationError` is thrown. `fresh` is
    /// the record as it has just been read. Gives the error by which the server asked for patience.
    [[nodiscard]] Async<std::optional<ports::CloudError>> payDebts(std::optional<ports::CloudRecord> fresh);

private:
    ports::CloudDatabase& database_;
    AlertMetadataCache& cache_;
};

} // namespace sentrel
