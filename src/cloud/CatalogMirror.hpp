#pragma once

#include "cloud/AlertMetadataCache.hpp"
#include "foundation/TextList.hpp"

#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

namespace sentrel {

/// The catalog as this Mac has last read it, and the alerts that the cache and the catalog may not have in common. To
/// follow a catalog costs time for the identifiers in which it has changed, not for all: it may list thousands, and
/// each new alert has it read twice. Main actor only.
class CatalogMirror {
public:
    /// A catalog's list of identifiers. Texts that are none are skipped.
    struct List {
        TextList texts;
        bool isThere = false;     ///< false for a record without a list, which proves nothing
        bool isTruncated = false; ///< absence from the list doesn't mean deletion
    };

    /// The way from one list to another.
    struct Step {
        TextList from;
        List to;
        std::optional<std::unordered_set<UUID>> all; ///< the whole list, when it has little in common with the other
        std::vector<UUID> gone;                      ///< else the identifiers that are no longer listed
        std::vector<UUID> added;                     ///< and the new ones
        bool isPlain = true;                         ///< each text is an identifier; none is known to occur twice
    };

    explicit CatalogMirror(AlertMetadataCache& cache) : cache_(cache) {}
    CatalogMirror(const CatalogMirror&) = delete;

    [[nodiscard]] const List& list() const { return list_; }
    [[nodiscard]] const std::unordered_set<UUID>& ids() const { return ids_; }
    [[nodiscard]] bool lists(const UUID& id) const { return ids_.contains(id); }

    /// Whether each text of the list is an identifier and occurs once.
    [[nodiscard]] bool isPlain() const { return isPlain_; }

    /// Returns the work that finds the step from the present list to another, for any thread.
    [[nodiscard]] auto finderOfStep(List to) const
    {
        return [from = list_.texts, isPlain = isPlain_, to = std::move(to)] { return stepBetween(from, isPlain, to); };
    }

    /// Takes a step. False, without effect, when the mirror has moved on from where the step begins.
    bool follow(Step step);

    /// The alerts that are listed and not in the cache, and those for which it is the other way round.
    [[nodiscard]] std::vector<UUID> uncached();
    [[nodiscard]] std::vector<UUID> unlisted();

    /// Call when the cache has been brought in line with the list, as far as it can be.
    void noteReconciled();

private:
    [[nodiscard]] static Step stepBetween(const TextList& from, bool isFromPlain, List to);
    void takeCacheChanges();

    AlertMetadataCache& cache_;
    List list_;
    bool isPlain_ = true;
    std::unordered_set<UUID> ids_;
    bool isEachSuspect_ = true;         // the list and the cache were not compared yet
    std::unordered_set<UUID> suspects_; // else: all other alerts are in both, or in neither
    std::shared_ptr<const AlertMetadataCache::Changes> cacheChanges_; // not yet among the suspects
};

} // namespace sentrel
