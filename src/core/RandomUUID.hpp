#pragma once

#include "foundation/UUID.hpp"

namespace sentrel {

namespace ports {
class GeneralRandom;
}

/// A new random identifier, from the generator that never fails. Any thread.
[[nodiscard]] UUID randomUUID(ports::GeneralRandom& random);

} // namespace sentrel
