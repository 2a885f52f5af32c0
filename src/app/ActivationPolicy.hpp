#pragma once

#include "ports/WindowConstants.hpp"

namespace sentrel {

using ports::accessoryActivationPolicy;
using ports::regularActivationPolicy;

} // namespace sentrel
