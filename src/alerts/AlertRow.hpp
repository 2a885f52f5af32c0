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

/// The English text shown for the location; the key of the localised one.
[[nodiscard]] std::string_view label(AlertStorageLocation location);

/// A row of the list, identified by its alert's identifier.
struct AlertRow {
    AlertEvent alert;
    AlertStorageLocation storageLocation = AlertStorageLocation::cloud;
    friend bool operator==(const AlertRow&, const AlertRow&) = default;
};

/// The location of an alert that this Mac stores.
[[nodiscard]] AlertStorageLocation locationOf(const StoredAlert& stored);

/// A whole list, shared so that thousands of rows are passed on and sectioned without copies.
using AlertList = std::shared_ptr<const std::vector<AlertRow>>;

/// Rows of one stretch of time under a title in the user's language.
struct AlertSection {
    std::string id;
    std::string title;
    std::vector<std::shared_ptr<const AlertRow>> alerts; ///< never null; they share ownership of their list
};

} // namespace sentrel
