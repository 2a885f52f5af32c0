#include "alerts/AlertRow.hpp"

namespace sentrel {

std::string_view label(AlertStorageLocation location)
{
    switch (location) {
    case AlertStorageLocation::cloud:
        return "Synced to iCloud";
    case AlertStorageLocation::localMac:
        return "Saved on this Mac only";
    case AlertStorageLocation::pendingUpload:
        break;
    }
    return "Waiting to upload to iCloud";
}

AlertStorageLocation locationOf(const StoredAlert& stored)
{
    return stored.pendingUpload ? AlertStorageLocation::pendingUpload : AlertStorageLocation::localMac;
}

} // namespace sentrel
