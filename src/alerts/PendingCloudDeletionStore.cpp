#include "alerts/PendingCloudDeletionStore.hpp"

#include "platform/UserDefaults.hpp"

#include <utility>

namespace sentrel {

PendingCloudDeletionStore::PendingCloudDeletionStore(std::string key, platform::UserDefaults& defaults)
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
}

void PendingCloudDeletionStore::add(const std::unordered_set<UUID>& ids)
{
    bool isNew = false;
    for (const UUID& id : ids) {
        if (ids_.insert(id).second) {
            orderedIDs_.push_back(id);
            isNew = true;
        }
    }
    if (!isNew) {
        return;
    }
    if (orderedIDs_.size() > mostIdentifiers) {
        const auto firstKept = orderedIDs_.end() - static_cast<std::ptrdiff_t>(mostIdentifiers);
        for (auto dropped = orderedIDs_.begin(); dropped != firstKept; ++dropped) {
            ids_.erase(*dropped);
        }
        orderedIDs_.erase(orderedIDs_.begin(), firstKept);
    }
    persist();
}

void PendingCloudDeletionStore::remove(const std::unordered_set<UUID>& ids)
{
    const auto removed = std::erase_if(orderedIDs_, [&ids](const UUID& id) { return ids.contains(id); });
    if (removed == 0) {
        return;
    }
    std::erase_if(ids_, [&ids](const UUID& id) { return ids.contains(id); });
    persist();
}

void PendingCloudDeletionStore::persist()
{
    std::vector<std::string> texts;
    texts.reserve(orderedIDs_.size());
    for (const UUID& id : orderedIDs_) {
        texts.push_back(id.text());
    }
    defaults_.setTexts(defaultsKey_, texts);
}

} // namespace sentrel
