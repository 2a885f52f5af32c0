#include "core/RandomUUID.hpp"

#include "ports/Random.hpp"

#include <algorithm>

namespace sentrel {

UUID randomUUID(ports::GeneralRandom& random)
{
    UUID::Octets octets{};
    std::ranges::generate(octets, [&random] { return random.nextByte(); });
    return UUID::fromRandom(octets);
}

} // namespace sentrel
