#pragma once

#include "foundation/UUID.hpp"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sentrel {

namespace ports {
class UserDefaults;
}

/// The alerts whose deletion the cloud has not confirmed yet, across launches, each with the iCloud user whose database
/// must confirm it. Main actor only.
class PendingCloudDeletionStore {
public:
    static constexpr const char* standardKey = "MacAlertsService.pendingCloudDeletions";

    /// Suffix of the list's key for the users; each text holds an identifier, a space and the user's record name.
    static constexpr const char* ownersKeySuffix = ".owners";

    /// Identifiers kept: the newest.
    static constexpr std::size_t mostIdentifiers = 2000;

    /// Loads the identifiers stored under the key; skips malformed ones.
    PendingCloudDeletionStore(std::string key, ports::UserDefaults& defaults);

    [[nodiscard]] const std::unordered_set<UUID>& ids() const { return ids_; }

    /// Oldest first.
    [[nodiscard]] const std::vector<UUID>& orderedIDs() const { return orderedIDs_; }

    /// The identifiers that this user's database must confirm, oldest first. Those of unknown users belong to every
    /// user.
    [[nodiscard]] std::vector<UUID> idsOf(const std::string& owner) const;

    /// Adds the identifiers for this user; empty means unknown. Identifiers already present keep their place and user.
    void add(const std::unordered_set<UUID>& ids, const std::string& owner);
    void remove(const std::unordered_set<UUID>& ids);

private:
    void loadOwners();
    void dropOldest();
    void persist();

    std::string defaultsKey_;
    ports::UserDefaults& defaults_;
    std::vector<UUID> orderedIDs_;
    std::unordered_set<UUID> ids_;
    std::unordered_map<UUID, std::string> owners_; ///< known users only
};

} // namespace sentrel
