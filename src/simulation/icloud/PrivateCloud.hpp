#pragma once

#include "foundation/Json.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/Registration.hpp"
#include "ports/WallClock.hpp"
#include "simulation/Listener.hpp"
#include "simulation/icloud/ServerRecord.hpp"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

class BatchWriter;
class CloudStore;

/// The device that makes a request.
struct CloudDevice {
    std::string user;   ///< the account that the device is signed in to
    std::string device; ///< tells the devices of all accounts apart
};

/// The server: one private database file per account, which outlives the server. Several devices may share an account.
/// A request throws `CloudError` if it fails as a whole. A damaged file is renamed, noted as `icloud.damaged`
/// {`account`, `putAside`} and replaced by an empty one. Any thread.
class PrivateCloud {
public:
    using PushReceiver = std::function<void(const std::string& user, const Json& push)>;

    /// Creates the folder when needed; with an empty path, the databases live in memory, as long as the server. `clock`
    /// is the server's.
    PrivateCloud(std::filesystem::path folder, ports::WallClock& clock, ports::Journal& journal);
    ~PrivateCloud();
    PrivateCloud(const PrivateCloud&) = delete;

    [[nodiscard]] Date now() { return clock_.now(); }

    /// The bytes that an account may store: 0 is full, none (initially) is unlimited.
    void setQuota(const std::string& user, std::optional<std::uint64_t> bytes);

    /// Whether an account's quota is 0.
    [[nodiscard]] bool isFull(const std::string& user);

    /// A page of records for which the predicate holds: at most 200, and at most `limit` when that isn't 0.
    [[nodiscard]] ServerPage query(const CloudDevice& who, const ports::CloudQuery& query,
                                   const ports::CloudDesiredKeys& wanted, std::size_t limit);

    /// The next page. Records created since the query don't appear; records that are gone or no longer match are left
    /// out.
    [[nodiscard]] ServerPage continueQuery(const CloudDevice& who, const ports::CloudQueryCursor* cursor,
                                           const ports::CloudDesiredKeys& wanted, std::size_t limit);

    [[nodiscard]] std::map<std::string, ServerRecordResult>
    fetch(const CloudDevice& who, const std::vector<std::string>& names, const ports::CloudDesiredKeys& wanted);

    /// Each record succeeds or fails alone. Atomic batches, impossible in the default zone, throw error 12.
    [[nodiscard]] ServerModification modify(const CloudDevice& who, const ServerBatch& batch);

    /// Replaces a subscription with the same identifier.
    void saveSubscription(const CloudDevice& who, const ports::CloudSubscription& subscription);
    [[nodiscard]] std::vector<ports::CloudSubscription> subscriptions(const std::string& user);

    /// Number of an account's records of a type.
    /// The names of an account's records of a type, in the order of their creation.
    [[nodiscard]] std::vector<std::string> names(const std::string& user, const std::string& type);
    [[nodiscard]] std::uint64_t count(const std::string& user, const std::string& type);

    /// Registers for the pushes to every account, except those caused by the device's own writes; the receiver filters
    /// by account. Called on the writing thread.
    [[nodiscard]] ports::RegistrationPtr receivePushes(const std::string& device, PushReceiver receiver);

    /// CloudKit's name of an account's user: an underscore and 32 hexadecimal digits.
    [[nodiscard]] static std::string userRecordName(const std::string& user);

private:
    using Receivers = Listeners<std::string, std::string, Json>; // user, writer, push

    template <class Serve> auto serve(const std::string& user, Serve work);
    [[nodiscard]] CloudStore& storeOf(const std::string& user);
    [[nodiscard]] std::unique_ptr<CloudStore> openOrReplace(const std::string& user);
    void putAside(const std::string& user);
    [[nodiscard]] std::filesystem::path fileOf(const std::string& user) const;
    [[nodiscard]] ServerModification write(CloudStore& store, const CloudDevice& who, const ServerBatch& batch,
                                           std::vector<Json>& pushes);

    const std::filesystem::path folder_;
    ports::WallClock& clock_;
    ports::Journal& journal_;
    Receivers receivers_;
    std::mutex mutex_; // guards the members below, and their files
    std::map<std::string, std::uint64_t> quotas_;
    std::map<std::string, std::unique_ptr<CloudStore>> stores_;
};

} // namespace sentrel::simulation
