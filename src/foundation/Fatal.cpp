#include "foundation/Fatal.hpp"

#include <cstdio>
#include <cstdlib>

namespace sentrel {

void fatalError(std::string_view reason)
{
    std::fprintf(stderr, "Sentrel: fatal error: %.*s\n", static_cast<int>(reason.size()), reason.data());
    std::abort();
}

} // namespace sentrel
