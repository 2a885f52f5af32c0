#include "cloud/CatalogMirror.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace sentrel {

namespace {

/// The identifiers among the texts from `first` on.
std::vector<UUID> idsFrom(const TextList& texts, std::size_t first)
{
    std::vector<UUID> ids;
    ids.reserve(texts.size() - first);
    for (std::size_t place = first; place < texts.size(); ++place) {
        if (const auto id = UUID::parse(texts[place])) {
            ids.push_back(*id);
        }
    }
    return ids;
}

} // namespace

CatalogMirror::Step CatalogMirror::stepBetween(const TextList& from, bool isFromPlain, List to)
{
    Step step;
    step.from = from;
    step.to = std::move(to);
    const TextList& texts = step.to.texts;
    const std::size_t common = from.commonWith(texts);
    const bool isShort = from.size() - common <= common && texts.size() - common <= common;
    if (isFromPlain && isShort) {
        step.gone = idsFrom(from, common);
        step.added = idsFrom(texts, common);
        step.isPlain = step.added.size() == texts.size() - common;
        return step;
    }
    const std::vector<UUID> ids = idsFrom(texts, 0);
    step.all.emplace(ids.begin(), ids.end());
    step.isPlain = step.all->size() == texts.size();
    return step;
}

bool CatalogMirror::follow(Step step)
{
    if (!(step.from == list_.texts)) {
        return false;
    }
    list_ = std::move(step.to);
    isPlain_ = step.isPlain;
    if (step.all) {
        ids_ = *std::move(step.all);
        isEachSuspect_ = true;
        return true;
    }
    for (const UUID& id : step.gone) {
        ids_.erase(id);
    }
    for (const UUID& id : step.added) {
        const bool isNew = ids_.insert(id).second;
        isPlain_ = isPlain_ && isNew;
    }
    suspects_.insert(step.gone.begin(), step.gone.end());
    suspects_.insert(step.added.begin(), step.added.end());
    return true;
}

std::vector<UUID> CatalogMirror::uncached()
{
    takeCacheChanges();
    const auto isMissing = [this](const UUID& id) { return lists(id) && !cache_.alerts().contains(id); };
    std::vector<UUID> missing;
    std::ranges::copy_if(isEachSuspect_ ? ids_ : suspects_, std::back_inserter(missing), isMissing);
    return missing;
}

std::vector<UUID> CatalogMirror::unlisted()
{
    takeCacheChanges();
    std::vector<UUID> unlisted;
    if (!isEachSuspect_) {
        std::ranges::copy_if(suspects_, std::back_inserter(unlisted),
                             [this](const UUID& id) { return !lists(id) && cache_.alerts().contains(id); });
        return unlisted;
    }
    for (const auto& [id, alert] : cache_.alerts()) {
        if (!lists(id)) {
            unlisted.push_back(id);
        }
    }
    return unlisted;
}

void CatalogMirror::noteReconciled()
{
    const std::vector<UUID> missing = uncached();
    const std::vector<UUID> surplus = unlisted();
    suspects_.clear();
    suspects_.insert(missing.begin(), missing.end());
    suspects_.insert(surplus.begin(), surplus.end());
    isEachSuspect_ = false;
}

void CatalogMirror::takeCacheChanges()
{
    if (cacheChanges_ != nullptr) {
        suspects_.insert(cacheChanges_->ids.begin(), cacheChanges_->ids.end());
        isEachSuspect_ = isEachSuspect_ || cacheChanges_->isAnotherUser;
    }
    if (cacheChanges_ == nullptr || cacheChanges_->isAnotherUser || !cacheChanges_->ids.empty()) {
        cacheChanges_ = cache_.watch();
    }
}

} // namespace sentrel
