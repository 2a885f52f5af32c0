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

/// The alerts whose deletion the cloud has not confirmed yet, across launches, each with the iCloud user in whose
/// database it is owed: no other database can confirm it. Main actor only.
class PendingCloudDeletionStore {
public:
    static constexpr const char* standardKey = "MacAlertsService.pendingCloudDeletions";

    /// Appended to the key of the list: where the defaults keep the users, each text an identifier and its user's
    /// record name.
    static constexpr const char* ownersKeySuffix = ".owners";

    /// So many are kept: the newest.
    static constexpr std::size_t mostIdentifiers = 2000;

    /// Loads what the defaults hold under the key; what is no identifier is skipped.
    PendingCloudDeletionStore(std::string key, ports::UserDefaults& defaults);

    [[nodiscard]] const std::unordered_set<UUID>& ids() const { return ids_; }

    /// Oldest first.
    [[nodiscard]] const std::vector<UUID>& orderedIDs() const { return orderedIDs_; }

    /// Those that this user's database has to confirm, oldest first. An identifier of an unknown user counts as every
    /// user's.
    [[nodiscard]] std::vector<UUID> idsOf(const std::string& owner) const;

    /// Remembers the identifiers as this user's, who may be unknown (empty). One that is there already keeps its place
    /// and its user.
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
    std::unordered_map<UUID, std::string> owners_; ///< where they are known
};

} // namespace sentrel
