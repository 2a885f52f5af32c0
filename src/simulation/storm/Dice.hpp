#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

namespace sentrel::simulation {

/// Draws from the generator in a way that no library's distributions change.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : generator_(seed) {}

    /// From 0 to below `count`.
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(generator_() % count); }
    std::int64_t between(std::int64_t least, std::int64_t most)
    {
        return least + static_cast<std::int64_t>(below(static_cast<std::size_t>(most - least + 1)));
    }
    bool chance(std::size_t percent) { return below(100) < percent; }

    /// From `least` to `most`, small values as often as large ones.
    std::int64_t spread(std::int64_t least, std::int64_t most)
    {
        constexpr double steps = 1 << 20;
        const double part = static_cast<double>(below(1 << 20)) / steps;
        const double low = std::log2(static_cast<double>(least));
        return static_cast<std::int64_t>(std::exp2(low + part * (std::log2(static_cast<double>(most)) - low)));
    }

    template <class Range> const auto& oneOf(const Range& range) { return range[below(std::size(range))]; }

private:
    std::mt19937_64 generator_;
};

} // namespace sentrel::simulation
