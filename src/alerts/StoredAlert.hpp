#pragma once

#include "core/AlertEvent.hpp"

#include <optional>

namespace sentrel {

/// An alert stored on this Mac.
struct StoredAlert {
    AlertEvent alert;
    bool pendingUpload = false; ///< still meant to be uploaded to iCloud

    friend bool operator==(const StoredAlert&, const StoredAlert&) = default;
};

[[nodiscard]] Json encodeStoredAlert(const StoredAlert& stored);

/// Strict: none when anything required is missing or malformed.
[[nodiscard]] std::optional<StoredAlert> decodeStoredAlert(const Json& document);

} // namespace sentrel
