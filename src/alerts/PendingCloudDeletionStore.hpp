#pragma once

#include "foundation/UUID.hpp"

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

namespace sentrel {

namespace platform {
class UserDefaults;
}

/// The alerts whose deletion the cloud has not confirmed yet, across launches. Main actor only.
class PendingCloudDeletionStore {
public:
    static constexpr const char* standardKey = "MacAlertsService.pendingCloudDeletions";

    /// So many are kept: the newest.
    static constexpr std::size_t mostIdentifiers = 2000;

    /// Loads what the defaults hold under the key; what is no identifier is skipped.
    PendingCloudDeletionStore(std::string key, platform::UserDefaults& defaults);

    [[nodiscard]] const std::unordered_set<UUID>& ids() const { return ids_; }

    /// Oldest first.
    [[nodiscard]] const std::vector<UUID>& orderedIDs() const { return orderedIDs_; }

    void add(const std::unordered_set<UUID>& ids);
    void remove(const std::unordered_set<UUID>& ids);

private:
    void persist();

    std::string defaultsKey_;
    platform::UserDefaults& defaults_;
    std::vector<UUID> orderedIDs_;
    std::unordered_set<UUID> ids_;
};

} // namespace sentrel
