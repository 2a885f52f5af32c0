#include "core/RandomUUID.hpp"

#include "platform/Random.hpp"

#include <algorithm>

namespace sentrel {

UUID randomUUID(platform::GeneralRandom& random)
{
    UUID::Octets octets{};
    std::ranges::generate(octets, [&random] { return random.nextByte(); });
    return UUID::fromRandom(octets);
}

} // namespace sentrel
