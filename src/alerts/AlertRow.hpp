#pragma once

#include "alerts/StoredAlert.hpp"
#include "core/AlertEvent.hpp"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel {

/// Where an alert lives.
enum class AlertStorageLocation {
    cloud,
    localMac,      ///< here only, and not marked for upload
    pendingUpload, ///< here, waiting to be uploaded
};

/// The English text by which the user knows the location; the key of the localised one.
[[nodiscard]] std::string_view label(AlertStorageLocation location);

/// An alert in the list, known by its alert's identifier.
struct AlertRow {
    AlertEvent alert;
    AlertStorageLocation storageLocation = AlertStorageLocation::cloud;
    friend bool operator==(const AlertRow&, const AlertRow&) = default;
};

/// Where an alert lives that is kept on this Mac.
[[nodiscard]] AlertStorageLocation locationOf(const StoredAlert& stored);

/// A whole list, shared so that thousands of rows are told and sectioned without being copied.
using AlertList = std::shared_ptr<const std::vector<AlertRow>>;

/// Rows of one stretch of time under a title in the user's language.
struct AlertSection {
    std::string id;
    std::string title;
    std::vector<std::shared_ptr<const AlertRow>> alerts; ///< never null; they share the list that they are of
};

} // namespace sentrel
