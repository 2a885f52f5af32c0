#pragma once

#include "cloud/CatalogMirror.hpp"
#include "ports/CloudError.hpp"
#include "ports/CloudRecord.hpp"
#include "runtime/Async.hpp"

#include <cstddef>
#include <optional>

namespace sentrel {

namespace ports {
class CloudDatabase;
}

/// The list of all alerts in the database: one record that every device reads instead of querying for thousands of
/// alerts. Devices change it by reading, merging and saving unless it has changed. Every saved or deleted alert is
/// reported to the catalog afterwards; a failed report remains owed until the next change. Main actor only.
class AlertCatalog {
public:
    static constexpr const char* recordType = "AlertCatalog";
    static constexpr const char* recordName = "alert-catalog";

    /// A list of texts: the alerts' identifiers in upper case, in the order in which they were added.
    static constexpr const char* alertIDsField = "alertIDs";

    /// Non-zero once identifiers were dropped from the list: absence then no longer means deletion.
    static constexpr const char* isTruncatedField = "isTruncated";

    /// Capacity of the list, which keeps the newest: a record holds 1 MB, and an identifier takes at least 36 bytes.
    static constexpr std::size_t mostIdentifiers = 20'000;

    AlertCatalog(ports::CloudDatabase& database, AlertMetadataCache& cache)
        : database_(database), cache_(cache), mirror_(cache)
    {
    }

    /// The catalog's record, or a new, empty one when there is none. Throws the request's error.
    [[nodiscard]] static Async<ports::CloudRecord> read(ports::CloudDatabase& database);

    /// The outcome of an attempt to read the catalog.
    struct Reading {
        std::optional<ports::CloudRecord> record;    ///< none when the request failed
        std::optional<ports::CloudError> throttling; ///< set when the server throttles
    };
    [[nodiscard]] static Async<Reading> tryToRead(ports::CloudDatabase& database);

    [[nodiscard]] static CatalogMirror::List listOf(const ports::CloudRecord& record);

    [[nodiscard]] CatalogMirror& mirror() { return mirror_; }

    /// Applies the owed changes to the catalog. A failure keeps them owed; throws only a `CancellationError`. `fresh`
    /// is the record as it has just been read. Returns the error if the server throttles.
    [[nodiscard]] Async<std::optional<ports::CloudError>> payDebts(std::optional<ports::CloudRecord> fresh);

private:
    bool merge(ports::CloudRecord& record, const CatalogDebts& debts);

    ports::CloudDatabase& database_;
    AlertMetadataCache& cache_;
    CatalogMirror mirror_;
};

} // namespace sentrel
