#pragma once

#include "foundation/Fatal.hpp"

namespace sentrel::fuzz {

/// Ends the program when a claim about the tested code doesn't hold: the fuzzer keeps the input.
inline void require(bool claim, const char* broken)
{
    if (!claim) {
        fatalError(broken);
    }
}

} // namespace sentrel::fuzz
