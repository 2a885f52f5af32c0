#include "runtime/Time.hpp"

#include <cmath>

namespace sentrel {

Duration durationFromSeconds(double seconds)
{
    constexpr double century = 100.0 * 365.25 * 86400.0;
    if (!(seconds > 0.0)) {
        return Duration::zero();
    }
    if (seconds > century) {
        seconds = century;
    }
    return Duration{std::llround(seconds * 1e9)};
}

} // namespace sentrel
