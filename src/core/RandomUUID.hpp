#pragma once

#include "foundation/UUID.hpp"

namespace sentrel {

namespace platform {
class GeneralRandom;
}

/// A new random identifier, from the generator that always answers. Any thread.
[[nodiscard]] UUID randomUUID(platform::GeneralRandom& random);

} // namespace sentrel
