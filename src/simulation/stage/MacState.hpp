#pragma once

#include "foundation/Json.hpp"

namespace sentrel::simulation {

class MacSession;

/// Everything that a scenario may expect something of, by the names that scenarios use. The alerts are read from the
/// disk afresh, past the product.
[[nodiscard]] Json stateOf(MacSession& session);

} // namespace sentrel::simulation
