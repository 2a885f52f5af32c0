#pragma once

#include "foundation/Fatal.hpp"
#include "runtime/MainActor.hpp"

namespace sentrel {

/// First line of what only the main actor may call: a debug build ends the program when anything else calls it.
inline void assertOnMainActor([[maybe_unused]] const MainActor& actor)
{
#ifndef NDEBUG
    if (!actor.isCurrent()) {
        fatalError("a service of the main actor was called off the main actor");
    }
#endif
}

} // namespace sentrel
