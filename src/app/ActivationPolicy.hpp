#pragma once

#include "platform/WindowConstants.hpp"

namespace sentrel {

using platform::accessoryActivationPolicy;
using platform::regularActivationPolicy;

} // namespace sentrel
