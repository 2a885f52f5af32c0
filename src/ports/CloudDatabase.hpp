#pragma once

#include "ports/CloudError.hpp"
#include "ports/CloudRecord.hpp"
#include "runtime/Async.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace sentrel::ports {

/// An `NSPredicate`: its format and the arguments for its "%@".
struct CloudPredicate {
    using Argument = std::variant<std::string, std::int64_t, Date, std::vector<std::int64_t>>;
    std::string format = "TRUEPREDICATE";
    std::vector<Argument> arguments;
};

/// A `CKQuery` with one optional sort key.
struct CloudQuery {
    std::string recordType;
    CloudPredicate predicate;
    std::string sortKey; ///< empty: in the server's order
    bool isAscending = true;
};

/// The position at which a query continues.
class CloudQueryCursor {
public:
    virtual ~CloudQueryCursor() = default;
};

/// The result for one record of a request.
using CloudRecordResult = std::variant<CloudRecord, CloudError>;

/// The result of one deletion: an error, or none on success.
using CloudDeleteResult = std::optional<CloudError>;

struct CloudQueryPage {
    std::vector<std::pair<std::string, CloudRecordResult>> results; ///< by record name, in the query's order
    std::shared_ptr<const CloudQueryCursor> cursor;                 ///< null at the end
};

struct CloudModification {
    std::map<std::string, CloudRecordResult> saved;   ///< by record name
    std::map<std::string, CloudDeleteResult> deleted; ///< likewise
};

/// How a save treats a record that has changed on the server meanwhile (`CKRecordSavePolicy`).
enum class CloudSavePolicy : std::int64_t {
    ifServerRecordUnchanged = 0,
    changedKeys = 1, ///< overwrites the record's fields on the server and keeps the others
    allKeys = 2,
};

/// A `CKQuerySubscription` with its notification.
struct CloudSubscription {
    std::string identifier;
    std::string recordType;
    CloudPredicate predicate;
    std::uint64_t options = 0; ///< `CKQuerySubscriptionOptions`

    /// `CKNotificationInfo`.
    std::string alertLocalizationKey; ///< empty: no alert is shown
    std::vector<std::string> alertLocalizationArguments;
    std::string soundName;
    std::vector<std::string> desiredKeys;
    bool sendsContentAvailable = false;
};

/// The names of the fields to fetch; none fetches all.
using CloudDesiredKeys = std::optional<std::vector<std::string>>;

/// The private database of the user's iCloud account (`CKDatabase`), default zone. Each call is one request, and throws
/// `CloudError` when it fails as a whole. Calls start and resume on the main thread. Cancellation throws
/// `CancellationError`; the server may have executed the request all the same.
class CloudDatabase {
public:
    virtual ~CloudDatabase() = default;

    [[nodiscard]] virtual Async<CloudQueryPage> query(CloudQuery query, CloudDesiredKeys desiredKeys,
                                                      std::size_t resultsLimit) = 0;
    [[nodiscard]] virtual Async<CloudQueryPage> continueQuery(std::shared_ptr<const CloudQueryCursor> cursor,
                                                              CloudDesiredKeys desiredKeys,
                                                              std::size_t resultsLimit) = 0;

    /// Fetches records by name; a missing record has error 11 (unknown item) as its result.
    [[nodiscard]] virtual Async<std::map<std::string, CloudRecordResult>> records(std::vector<std::string> names,
                                                                                  CloudDesiredKeys desiredKeys) = 0;

    /// Each record succeeds or fails by itself: the default zone has no atomic batches.
    [[nodiscard]] virtual Async<CloudModification> modify(std::vector<CloudRecord> save,
                                                          std::vector<std::string> deleteNames, CloudSavePolicy policy,
                                                          bool isAtomic) = 0;

    /// Fetches one record with all its fields; throws error 11 (unknown item) when it isn't there.
    [[nodiscard]] virtual Async<CloudRecord> record(std::string name) = 0;

    /// Saves one record and returns it as the server has it. Throws error 14 (server record changed) if the server's
    /// has changed.
    [[nodiscard]] virtual Async<CloudRecord> save(CloudRecord record) = 0;

    [[nodiscard]] virtual Async<void> saveSubscription(CloudSubscription subscription) = 0;
};

} // namespace sentrel::ports
