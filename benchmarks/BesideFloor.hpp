#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>

namespace sentrel {

/// The time that a function takes, in seconds.
template <class Function> double secondsOf(Function& function)
{
    const auto start = std::chrono::steady_clock::now();
    function();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Measures a piece of work beside the least that it could cost: both take turns, so that a busy machine slows both,
/// and the fastest turn of each counts. Each call of either does `repetitions` of the work. Reported are both in
/// nanoseconds for one, their ratio, and the limit that the ratio should keep.
template <class Floor, class Work>
void measureBesideFloor(benchmark::State& state, double repetitions, double limit, Floor floor, Work work)
{
    double fastestFloor = std::numeric_limits<double>::max();
    double fastestWork = std::numeric_limits<double>::max();
    for ([[maybe_unused]] auto turn : state) {
        fastestFloor = std::min(fastestFloor, secondsOf(floor));
        const double seconds = secondsOf(work);
        fastestWork = std::min(fastestWork, seconds);
        state.SetIterationTime(seconds);
    }
    constexpr double nanoseconds = 1e9;
    state.counters["floor_ns"] = fastestFloor / repetitions * nanoseconds;
    state.counters["work_ns"] = fastestWork / repetitions * nanoseconds;
    state.counters["ratio"] = fastestWork / fastestFloor;
    state.counters["limit"] = limit;
}

} // namespace sentrel
