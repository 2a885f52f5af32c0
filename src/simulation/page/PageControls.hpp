#pragma once

#include "foundation/Json.hpp"
#include "simulation/page/PageRequests.hpp"

#include <string_view>
#include <vector>

namespace sentrel::simulation {

// Requests that use the Mac's screen. Each throws `BadRequest` if its body is malformed.
[[nodiscard]] PageAnswer useTree(LiveMac& mac, const Json& body);
[[nodiscard]] PageAnswer useWindow(LiveMac& mac, const Json& body);
[[nodiscard]] PageAnswer useMenu(LiveMac& mac, const Json& body);
[[nodiscard]] PageAnswer usePanel(LiveMac& mac, const Json& body);

/// The words of these requests' bodies, as web/PROTOCOL.md lists them.
struct ControlWords {
    std::vector<std::string_view> treeUses;
    std::vector<std::string_view> windowUses;
    std::vector<std::string_view> panels;
    std::vector<std::string_view> answers;
};
[[nodiscard]] ControlWords controlWords();

} // namespace sentrel::simulation
