#pragma once

#include "foundation/Fatal.hpp"
#include "runtime/MainActor.hpp"

namespace sentrel {

/// First statement of functions for the main actor only: debug builds end the program on any other thread.
inline void assertOnMainActor([[maybe_unused]] const MainActor& actor)
{
#ifndef NDEBUG
    if (!actor.isCurrent()) {
        fatalError("a service of the main actor was called off the main actor");
    }
#endif
}

} // namespace sentrel
