#pragma once

#include "core/AlertEvent.hpp"
#include "foundation/Bytes.hpp"

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sentrel {

/// Alerts by identifier.
using AlertMap = std::unordered_map<UUID, AlertEvent>;

/// Changes that this Mac has yet to make to the catalog.
struct CatalogDebts {
    std::vector<UUID> additions; ///< in order of arrival; may contain duplicates
    std::unordered_set<UUID> removals;

    [[nodiscard]] bool isEmpty() const { return additions.empty() && removals.empty(); }
    friend bool operator==(const CatalogDebts&, const CatalogDebts&) = default;
};

/// The contents of the local mirror of the cloud's alerts.
struct AlertCacheContents {
    std::optional<std::string> owner; ///< record name of the iCloud user; none when not known yet
    bool isComplete = false;          ///< all alerts of the database were listed at least once
    AlertMap alerts;
    CatalogDebts debts;

    friend bool operator==(const AlertCacheContents&, const AlertCacheContents&) = default;
};

/// Encodes the cache file again and again. It remembers each alert's text, so that a save encodes only what has
/// changed.
class AlertCacheEncoder {
public:
    /// Adds or replaces an alert.
    void put(const AlertEvent& alert);
    void erase(const UUID& id) { texts_.erase(id); }
    void eraseAll() { texts_.clear(); }

    /// The file: {"version": 1, "owner", "isComplete", "catalogAdditions", "catalogRemovals", "alerts"}, with the
    /// encoder's alerts and all else of `contents`. Throws `JsonEncodingError` for a date that isn't finite.
    [[nodiscard]] std::string document(const AlertCacheContents& contents) const;

private:
    std::unordered_map<UUID, std::string> texts_; // empty for a date that isn't finite
};

/// The cache file of these contents. Throws `JsonEncodingError` for a date that isn't finite.
[[nodiscard]] std::string encodeAlertCache(const AlertCacheContents& contents);

/// Strict: none when anything is missing, malformed or of another version. The database can be queried again.
[[nodiscard]] std::optional<AlertCacheContents> decodeAlertCache(BytesView file);

} // namespace sentrel
