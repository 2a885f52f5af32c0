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

/// Applies one request's saves and deletions to a store, within a transaction of the caller's.
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

    /// What became of each record. Throws `SqliteError`.
    [[nodiscard]] ServerModification apply(const ServerBatch& batch);

    /// The dictionaries of the pushes that are due once the transaction is done.
    [[nodiscard]] std::vector<Json> takePushes() { return std::move(pushes_); }

private:
    [[nodiscard]] ServerRecordResult save(const ServerRecord& record, ports::CloudSavePolicy policy);
    [[nodiscard]] bool writeWithinQuota(const ServerRecord& record, const std::optional<CloudStore::Header>& known);
    [[nodiscard]] ports::CloudDeleteResult remove(const std::string& name);
    void notify(const std::string& name, PushReason reason);

    CloudStore& store_;
    const Terms terms_;
    std::vector<ports::CloudSubscription> subscriptions_;
    std::vector<Json> pushes_;
};

} // namespace sentrel::simulation
