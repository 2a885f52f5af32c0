#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>

#include <time.h>

namespace sentrel {

/// A clock that work is measured by, in seconds.
using Stopwatch = double (*)();

inline double wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Processor time of the calling thread: it stands still while other programs have the processor. For long
/// calculations, which no wall clock sees undisturbed on a busy machine.
inline double processorSeconds()
{
    timespec spent{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &spent);
    return static_cast<double>(spent.tv_sec) + static_cast<double>(spent.tv_nsec) * 1e-9;
}

/// The time that a function takes, in seconds.
template <class Function> double secondsOf(Function& function, Stopwatch stopwatch = wallSeconds)
{
    const double start = stopwatch();
    function();
    return stopwatch() - start;
}

/// Measures a piece of work beside the least that it could cost: both take turns, so that a busy machine slows both,
/// and the fastest turn of each counts. Each call of either does `repetitions` of the work. Reported are both in
/// nanoseconds for one, their ratio, and the limit that the ratio should keep.
template <class Floor, class Work>
void measureBesideFloor(benchmark::State& state, double repetitions, double limit, Floor floor, Work work,
                        Stopwatch stopwatch = wallSeconds)
{
    double fastestFloor = std::numeric_limits<double>::max();
    double fastestWork = std::numeric_limits<double>::max();
    for ([[maybe_unused]] auto turn : state) {
        fastestFloor = std::min(fastestFloor, secondsOf(floor, stopwatch));
        const double seconds = secondsOf(work, stopwatch);
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
