#include "alerts/PendingCloudDeletionStore.hpp"

#include "ports/UserDefaults.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace sentrel {

PendingCloudDeletionStore::PendingCloudDeletionStore(std::string key, ports::UserDefaults& defaults)
    : defaultsKey_(std::move(key)), defaults_(defaults)
{
    const auto texts = defaults_.texts(defaultsKey_);
    if (!texts) {
        return;
    }
    for (const std::string& text : *texts) {
        const auto id = UUID::parse(text);
        if (id && ids_.insert(*id).second) {
            orderedIDs_.push_back(*id);
        }
    }
    loadOwners();
}

void PendingCloudDeletionStore::loadOwners()
{
    const auto entries = defaults_.texts(defaultsKey_ + ownersKeySuffix);
    if (!entries) {
        return;
    }
    for (const std::string_view entry : *entries) {
        const auto space = entry.find(' ');
        const auto id = UUID::parse(entry.substr(0, space));
        if (space != entry.npos && id && ids_.contains(*id)) {
            owners_.insert_or_assign(*id, std::string{entry.substr(space + 1)});
        }
    }
}

std::vector<UUID> PendingCloudDeletionStore::idsOf(const std::string& owner) const
{
    std::vector<UUID> ids;
    std::ranges::copy_if(orderedIDs_, std::back_inserter(ids), [&](const UUID& id) {
        const auto known = owners_.find(id);
        return known == owners_.end() || known->second == owner;
    });
    return ids;
}

void PendingCloudDeletionStore::add(const std::unordered_set<UUID>& ids, const std::string& owner)
{
    bool isNew = false;
    for (const UUID& id : ids) {
        if (ids_.insert(id).second) {
            orderedIDs_.push_back(id);
            if (!owner.empty()) {
                owners_.emplace(id, owner);
            }
            isNew = true;
        }
    }
    if (isNew) {
        dropOldest();
        persist();
    }
}

void PendingCloudDeletionStore::dropOldest()
{
    if (orderedIDs_.size() <= mostIdentifiers) {
        return;
    }
    const auto firstKept = orderedIDs_.end() - static_cast<std::ptrdiff_t>(mostIdentifiers);
    for (auto dropped = orderedIDs_.begin(); dropped != firstKept; ++dropped) {
        ids_.erase(*dropped);
        owners_.erase(*dropped);
    }
    orderedIDs_.erase(orderedIDs_.begin(), firstKept);
}

void PendingCloudDeletionStore::remove(const std::unordered_set<UUID>& ids)
{
    const auto removed = std::erase_if(orderedIDs_, [&ids](const UUID& id) { return ids.contains(id); });
    if (removed == 0) {
        return;
    }
    std::erase_if(ids_, [&ids](const UUID& id) { return ids.contains(id); });
    std::erase_if(owners_, [&ids](const auto& entry) { return ids.contains(entry.first); });
    persist();
}

void PendingCloudDeletionStore::persist()
{
    std::vector<std::string> texts;
    std::vector<std::string> entries;
    texts.reserve(orderedIDs_.size());
    for (const UUID& id : orderedIDs_) {
        texts.push_back(id.text());
        const auto known = owners_.find(id);
        if (known != owners_.end()) {
            entries.push_back(texts.back() + " " + known->second);
        }
    }
    // The users first: if a crash separates them, an identifier without a user counts as every user's.
    defaults_.setTexts(defaultsKey_ + ownersKeySuffix, entries);
    defaults_.setTexts(defaultsKey_, texts);
}

} // namespace sentrel
