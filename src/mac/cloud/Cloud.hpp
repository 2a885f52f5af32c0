#pragma once

#include "ports/CloudAccount.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/NetworkPath.hpp"

#include <memory>
#include <string>

// The container in iCloud of this identifier, and the way to it. Cursors passed in must come from the same database.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::CloudAccount> makeCloudAccount(std::string container);
[[nodiscard]] std::unique_ptr<ports::CloudDatabase> makeCloudDatabase(std::string container);
[[nodiscard]] std::unique_ptr<ports::NetworkPaths> makeNetworkPaths();

} // namespace sentrel::mac
