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

/// What this Mac still has to tell the alert catalog.
struct CatalogDebts {
    std::vector<UUID> additions; ///< in the order in which they came; one may be there twice
    std::unordered_set<UUID> removals;

    [[nodiscard]] bool isEmpty() const { return additions.empty() && removals.empty(); }
    friend bool operator==(const CatalogDebts&, const CatalogDebts&) = default;
};

/// What this Mac knows of the alerts in the cloud.
struct AlertCacheContents {
    std::optional<std::string> owner; ///< the iCloud user's record name; none when it was never learnt
    bool isComplete = false;          ///< all alerts of the database were listed once
    AlertMap alerts;
    CatalogDebts debts;

    friend bool operator==(const AlertCacheContents&, const AlertCacheContents&) = default;
};

/// The cache file: {"version": 1, "owner", "isComplete", "catalogAdditions", "catalogRemovals", "alerts"}. Throws
/// `JsonEncodingError` for a date that is no number.
[[nodiscard]] std::string encodeAlertCache(const AlertCacheContents& contents);

/// Strict: none when anything is missing, malformed or of another version. The database can always be asked again.
[[nodiscard]] std::optional<AlertCacheContents> decodeAlertCache(BytesView file);

} // namespace sentrel
