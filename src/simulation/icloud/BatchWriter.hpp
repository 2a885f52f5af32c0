#pragma once

#include "foundation/Json.hpp"
#include "simulation/icloud/CloudStore.hpp"
#include "simulation/icloud/SubscriptionCoding.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// Applies one request's saves and deletions to a store, within the caller's transaction.
class BatchWriter {
public:
    struct Terms {
        Date now{};
        std::uint64_t quota = std::numeric_limits<std::uint64_t>::max(); ///< bytes
        std::string owner;                                               ///< the user's record name
    };

    BatchWriter(CloudStore& store, Terms terms)
        : store_(store), terms_(std::move(terms)), subscriptions_(store.subscriptions())
    {
    }

    /// Returns each record's result. Throws `SqliteError`.
    [[nodiscard]] ServerModification apply(const ServerBatch& batch);

    /// Moves out the dictionaries of the pushes to send after the commit.
    [[nodiscard]] std::vector<Json> takePushes() { return std::move(pushes_); }

private:
    [[nodiscard]] ServerRecordResult save(const ServerRecord& record, ports::CloudSavePolicy policy);
    [[nodiscard]] std::optional<ServerRecord> writeWithinQuota(const ServerRecord& record,
                                                               const std::optional<CloudStore::Header>& known);
    [[nodiscard]] ports::CloudDeleteResult remove(const std::string& name);
    void notify(const std::string& name, const std::string& type, PushReason reason);

    CloudStore& store_;
    const Terms terms_;
    std::vector<ports::CloudSubscription> subscriptions_;
    std::vector<Json> pushes_;
};

} // namespace sentrel::simulation
