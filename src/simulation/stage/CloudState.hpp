#pragma once

#include "foundation/Json.hpp"

namespace sentrel::simulation {

class MacSession;

/// Adds the state of iCloud, the list of alerts and the phone.
void addCloud(Json& state, MacSession& session);

} // namespace sentrel::simulation
