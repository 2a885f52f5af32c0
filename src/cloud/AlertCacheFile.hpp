#pragma once

#include "core/AlertEvent.hpp"
#include "foundation/Bytes.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
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

/// Encodes the cache file again and again. It keeps the file's text, so that a save encodes only the alerts that have
/// changed, and new ones are appended.
class AlertCacheEncoder {
public:
    /// Adds or replaces an alert.
    void put(const AlertEvent& alert);
    void erase(const UUID& id);
    void eraseAll();

    /// The file: {"alerts", "version": 1, "owner", "isComplete", "catalogAdditions", "catalogRemovals"}, with the
    /// encoder's alerts and all else of `contents`. Valid until the next call. Throws `JsonEncodingError` for a date
    /// that isn't finite.
    [[nodiscard]] std::string_view document(const AlertCacheContents& contents);

private:
    struct Span {
        std::size_t begin = 0;
        std::size_t length = 0;
    };
    void append(const UUID& id, std::string_view alert);
    void compact();

    std::string text_;                     // up to the last alert, then the rest of the latest document
    std::size_t length_ = 0;               // of `text_` without that rest
    std::unordered_map<UUID, Span> spans_; // of the alerts' texts
    std::unordered_set<UUID> unencodable_; // their dates aren't finite
    bool hasGaps_ = false;                 // texts of alerts that were replaced or erased
};

/// The cache file of these contents. Throws `JsonEncodingError` for a date that isn't finite.
[[nodiscard]] std::string encodeAlertCache(const AlertCacheContents& contents);

/// Strict: none when anything is missing, malformed or of another version. The database can be queried again.
[[nodiscard]] std::optional<AlertCacheContents> decodeAlertCache(BytesView file);

} // namespace sentrel
