#include "cloud/AlertMetadataCache.hpp"

#include "core/Events.hpp"
#include "foundation/Json.hpp"
#include "ports/DurableFile.hpp"
#include "ports/FileSystem.hpp"
#include "ports/Journal.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

/// Combines a burst of changes into one write.
constexpr Duration persistDelay = 1s;

/// Only the user may read when and where alarms went off.
constexpr std::uint32_t directoryMode = 0700;
constexpr std::uint32_t fileMode = 0600;

AlertCacheContents readContents(ports::FileSystem& files, ports::Journal& journal, const std::filesystem::path& file,
                                std::optional<std::string> owner)
{
    AlertCacheContents empty;
    empty.owner = std::move(owner);
    const auto bytes = files.read(file);
    if (!bytes) {
        return empty;
    }
    auto contents = decodeAlertCache(*bytes);
    if (!contents) {
        journal.note(events::AlertCacheDamaged{});
        return empty;
    }
    return contents->owner == empty.owner ? *std::move(contents) : empty;
}

} // namespace

AlertMetadataCache::AlertMetadataCache(MainActor actor, ports::FileSystem& files, ports::Journal& journal,
                                       std::filesystem::path directory, std::optional<std::string> owner)
    : actor_(actor),
      files_(files),
      journal_(journal),
      cacheDirectory_(std::move(directory)),
      alertCache_(readContents(files, journal, cacheDirectory_ / fileName, std::move(owner))),
      writing_(actor.scheduler())
{
    for (const auto& [id, alert] : alertCache_.alerts) {
        unsaved_.insert(id); // the encoder knows none yet
    }
}

void AlertMetadataCache::setComplete()
{
    if (!alertCache_.isComplete) {
        alertCache_.isComplete = true;
        persistSoon();
    }
}

void AlertMetadataCache::insert(AlertMap alerts)
{
    while (!alerts.empty()) {
        // Moves whole nodes: thousands of alerts cost no allocation.
        auto node = alerts.extract(alerts.begin());
        const UUID id = node.key();
        const auto known = alertCache_.alerts.find(id);
        if (known == alertCache_.alerts.end()) {
            alertCache_.alerts.insert(std::move(node));
        } else {
            auto photoFileName =
                node.mapped().photoFileName ? node.mapped().photoFileName : known->second.photoFileName;
            known->second = std::move(node.mapped());
            known->second.photoFileName = std::move(photoFileName);
        }
        markChanged(id);
    }
    persistSoon();
}

void AlertMetadataCache::setPhoto(const UUID& id, bool hasPhoto)
{
    const auto known = alertCache_.alerts.find(id);
    if (known == alertCache_.alerts.end() || known->second.photoFileName.has_value() == hasPhoto) {
        return;
    }
    known->second.photoFileName = hasPhoto ? std::optional{id.text() + ".jpg"} : std::nullopt;
    markChanged(id, &Changes::photos);
    persistSoon();
}

void AlertMetadataCache::erase(const std::unordered_set<UUID>& ids)
{
    for (const UUID& id : ids) {
        alertCache_.alerts.erase(id);
        markChanged(id);
    }
    persistSoon();
}

void AlertMetadataCache::oweAdditions(const std::vector<UUID>& ids)
{
    CatalogDebts& debts = alertCache_.debts;
    for (const UUID& id : ids) {
        debts.removals.erase(id);
    }
    debts.additions.insert(debts.additions.end(), ids.begin(), ids.end());
    persistSoon();
}

void AlertMetadataCache::oweRemovals(const std::unordered_set<UUID>& ids)
{
    CatalogDebts& debts = alertCache_.debts;
    std::erase_if(debts.additions, [&](const UUID& id) { return ids.contains(id); });
    debts.removals.insert(ids.begin(), ids.end());
    persistSoon();
}

void AlertMetadataCache::settle(const CatalogDebts& paid)
{
    CatalogDebts& debts = alertCache_.debts;
    const std::unordered_set<UUID> added{paid.additions.begin(), paid.additions.end()};
    std::erase_if(debts.additions, [&](const UUID& id) { return added.contains(id); });
    std::erase_if(debts.removals, [&](const UUID& id) { return paid.removals.contains(id); });
    persistSoon();
}

std::shared_ptr<const AlertMetadataCache::Changes> AlertMetadataCache::watch()
{
    std::erase_if(watches_, [](const std::weak_ptr<Changes>& watch) { return watch.expired(); });
    auto changes = std::make_shared<Changes>();
    watches_.push_back(changes);
    return changes;
}

void AlertMetadataCache::setOwner(std::string owner)
{
    if (alertCache_.owner != owner) {
        alertCache_.owner = std::move(owner);
        persistSoon();
    }
}

void AlertMetadataCache::startOver(std::string owner)
{
    alertCache_ = {};
    unsaved_.clear();
    startsOver_ = true;
    alertCache_.owner = std::move(owner);
    for (const std::weak_ptr<Changes>& watch : watches_) {
        if (const auto changes = watch.lock()) {
            changes->isAnotherUser = true;
        }
    }
    files_.remove(cacheDirectory_ / fileName);
    // A write under way may restore the old file; this later write replaces it.
    persistSoon();
}

Async<void> AlertMetadataCache::flush()
{
    if (!persistAlertCacheTask_ || persistAlertCacheTask_.isFinished()) {
        co_return;
    }
    hurry_->signal();
    const Task<void> persisting = persistAlertCacheTask_;
    co_await persisting;
}

void AlertMetadataCache::markChanged(const UUID& id, std::unordered_set<UUID> Changes::* kind)
{
    unsaved_.insert(id);
    for (const std::weak_ptr<Changes>& watch : watches_) {
        if (const auto changes = watch.lock()) {
            ((*changes).*kind).insert(id);
        }
    }
}

void AlertMetadataCache::persistSoon()
{
    isDirty_ = true;
    if (!persistAlertCacheTask_ || persistAlertCacheTask_.isFinished()) {
        persistAlertCacheTask_ = actor_.spawn(persist());
        tasks_.add(persistAlertCacheTask_);
    }
}

AlertMetadataCache::Save AlertMetadataCache::takeSave()
{
    Save save;
    save.rest.owner = alertCache_.owner;
    save.rest.isComplete = alertCache_.isComplete;
    save.rest.debts = alertCache_.debts;
    save.startsOver = std::exchange(startsOver_, false);
    for (const UUID& id : unsaved_) {
        const auto known = alertCache_.alerts.find(id);
        if (known != alertCache_.alerts.end()) {
            save.changed.push_back(known->second);
        } else {
            save.erased.push_back(id);
        }
    }
    unsaved_.clear();
    return save;
}

/// Returns 0 or an `errno` value.
int AlertMetadataCache::write(ports::FileSystem& files, const std::filesystem::path& directory,
                              AlertCacheEncoder& encoder, const Save& save)
{
    if (save.startsOver) {
        encoder.eraseAll();
    }
    for (const UUID& id : save.erased) {
        encoder.erase(id);
    }
    for (const AlertEvent& alert : save.changed) {
        encoder.put(alert);
    }
    try {
        const std::string_view text = encoder.document(save.rest);
        files.createDirectories(directory, directoryMode);
        const BytesView content{reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}; // may be megabytes
        return ports::writeDurably(files, directory / fileName, content, fileMode);
    } catch (const JsonEncodingError&) {
        return EINVAL;
    }
}

Async<void> AlertMetadataCache::persist()
{
    const auto hurry = hurry_;
    while (isDirty_) {
        co_await hurry->waitUntil(actor_.scheduler().now() + persistDelay);
        isDirty_ = false;
        const auto save = std::make_shared<const Save>(takeSave());
        auto work = [&files = files_, directory = cacheDirectory_, encoder = encoder_, save] {
            return write(files, directory, *encoder, *save);
        };
        const Task<int> written = writing_.start(QualityOfService::utility, std::move(work));
        const int error = co_await written;
        if (error != 0) {
            journal_.note(events::AlertCacheNotSaved{error});
        }
    }
}

} // namespace sentrel
