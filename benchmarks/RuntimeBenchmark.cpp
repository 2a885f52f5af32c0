// The cost of the runtime's steps: the floors beside which the product's own paths are measured.

#include "runtime/MainActor.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/VirtualScheduler.hpp"

#include <benchmark/benchmark.h>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

struct EmptyJob final : Job {
    void run() override { benchmark::ClobberMemory(); }
};

Async<void> empty()
{
    benchmark::ClobberMemory();
    co_return;
}

Async<void> sleeper(Duration span)
{
    co_await sleepFor(span);
}

/// Goes round until it is told to stop: each turn of the clock resumes it once.
Async<void> hopper(const bool& isStopped)
{
    while (!isStopped) {
        co_await sleepFor(1ms);
    }
}

void postAnEmptyJob(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    EmptyJob job;
    for (auto _ : state) {
        scheduler.mainExecutor().post(job);
        clock.runReady();
    }
}
BENCHMARK(postAnEmptyJob);

void spawnAnEmptyCoroutine(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    const MainActor mainActor{scheduler};
    for (auto _ : state) {
        mainActor.spawn(empty());
        clock.runReady();
    }
}
BENCHMARK(spawnAnEmptyCoroutine);

void spawnASleeper(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    const MainActor mainActor{scheduler};
    for (auto _ : state) {
        mainActor.spawn(sleeper(1ms));
        clock.runUntilIdle();
    }
}
BENCHMARK(spawnASleeper);

void wakeASleeper(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    bool isStopped = false;
    MainActor{scheduler}.spawn(hopper(isStopped));
    clock.runReady();
    for (auto _ : state) {
        clock.advance(1ms);
    }
    isStopped = true;
    clock.runUntilIdle();
}
BENCHMARK(wakeASleeper);

void hopToAQueue(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    SerialQueue queue{scheduler, "hop", QualityOfService::userInitiated};
    EmptyJob job;
    for (auto _ : state) {
        queue.executor().post(job);
        clock.runReady();
    }
}
BENCHMARK(hopToAQueue);

void runACoroutineOnAQueue(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    SerialQueue queue{scheduler, "hop", QualityOfService::userInitiated};
    for (auto _ : state) {
        queue.async(empty());
        clock.runReady();
    }
}
BENCHMARK(runACoroutineOnAQueue);

} // namespace
} // namespace sentrel
