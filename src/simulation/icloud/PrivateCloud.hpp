#pragma once

#include "foundation/Json.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/Registration.hpp"
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
class WallClock;
} // namespace sentrel::ports

namespace sentrel::simulation {

class BatchWriter;
class CloudStore;

/// Who makes a request.
struct CloudDevice {
    std::string user;   ///< the account that the device is signed in to
    std::string device; ///< tells the devices of all accounts apart
};

/// The server: a private database for each account, in a file of its own that outlives the server. Several devices may
/// share it. Every request throws `CloudError` when it fails as a whole; a file that can't be read is put aside, noted
/// as `icloud.damaged` {`account`, `putAside`}, and its account begins anew. Any thread.
class PrivateCloud {
public:
    using PushReceiver = std::function<void(const std::string& user, const Json& push)>;

    /// The folder is made when it isn't there; the clock is the server's.
    PrivateCloud(std::filesystem::path folder, ports::WallClock& clock, ports::Journal& journal);
    ~PrivateCloud();
    PrivateCloud(const PrivateCloud&) = delete;

    /// By how many seconds the server's clock is ahead of the one that it was made with.
    void setClockOffset(double seconds);
    [[nodiscard]] Date now();

    /// The bytes that an account may store: 0 is full, none is without limit, as at first.
    void setQuota(const std::string& user, std::optional<std::uint64_t> bytes);

    /// Whether an account has been left no room at all.
    [[nodiscard]] bool isFull(const std::string& user);

    /// A page of records for which the predicate holds: at most 200, and at most `limit` when that isn't 0.
    [[nodiscard]] ServerPage query(const CloudDevice& who, const ports::CloudQuery& query,
                                   const ports::CloudDesiredKeys& wanted, std::size_t limit);

    /// What follows. Records that are new since the query don't appear; those that are gone, or for which the
    /// predicate no longer holds, are left out.
    [[nodiscard]] ServerPage continueQuery(const CloudDevice& who, const ports::CloudQueryCursor* cursor,
                                           const ports::CloudDesiredKeys& wanted, std::size_t limit);

    [[nodiscard]] std::map<std::string, ServerRecordResult>
    fetch(const CloudDevice& who, const std::vector<std::string>& names, const ports::CloudDesiredKeys& wanted);

    /// Each record has its own fate: the default zone knows no atomic batches, and one is refused with error 12.
    [[nodiscard]] ServerModification modify(const CloudDevice& who, const ServerBatch& batch);

    /// One of the same identifier is replaced.
    void saveSubscription(const CloudDevice& who, const ports::CloudSubscription& subscription);
    [[nodiscard]] std::vector<ports::CloudSubscription> subscriptions(const std::string& user);

    /// How many records of a type an account has.
    [[nodiscard]] std::uint64_t count(const std::string& user, const std::string& type);

    /// Receives the pushes to every account, but for those that the device's own writes bring about; it knows which
    /// account it is signed in to. Called on the thread of whoever writes.
    [[nodiscard]] ports::RegistrationPtr receivePushes(const std::string& device, PushReceiver receiver);

    /// What CloudKit calls an account's user: an underscore and 32 hexadecimal digits.
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
    [[nodiscard]] Date nowLocked();

    const std::filesystem::path folder_;
    ports::WallClock& clock_;
    ports::Journal& journal_;
    Receivers receivers_;
    std::mutex mutex_; // guards what follows, the open files included
    double clockOffset_ = 0.0;
    std::map<std::string, std::uint64_t> quotas_;
    std::map<std::string, std::unique_ptr<CloudStore>> stores_;
};

} // namespace sentrel::simulation
