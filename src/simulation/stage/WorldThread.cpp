#include "simulation/stage/WorldThread.hpp"

#include <chrono>
#include <stdexcept>

namespace sentrel::simulation {

void WorldThread::start()
{
    const std::lock_guard guard{mutex_};
    if (isRunning_) {
        return;
    }
    isRunning_ = true;
    thread_ = std::thread{[this] { live(); }};
}

void WorldThread::stop()
{
    {
        const std::lock_guard guard{mutex_};
        isRunning_ = false;
    }
    wakened_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void WorldThread::throwStopped()
{
    throw std::runtime_error{"the simulated MacBook has stopped"};
}

bool WorldThread::enqueue(std::function<void()> request)
{
    {
        const std::lock_guard guard{mutex_};
        if (!isRunning_) {
            return false;
        }
        requests_.push_back(std::move(request));
    }
    wakened_.notify_all();
    return true;
}

void WorldThread::live()
{
    using RealClock = std::chrono::steady_clock;
    const auto realStart = RealClock::now();
    const Instant worldStart = clock_.now();
    std::unique_lock lock{mutex_};
    while (isRunning_ || !requests_.empty()) {
        std::deque<std::function<void()>> requests;
        std::swap(requests, requests_);
        lock.unlock();
        clock_.runUntil(worldStart + (RealClock::now() - realStart));
        for (const auto& request : requests) {
            request();
            clock_.runReady();
        }
        if (happened) {
            happened();
        }
        lock.lock();
        const auto isWanted = [this] { return !isRunning_ || !requests_.empty(); };
        if (const auto deadline = clock_.nextDeadline()) {
            wakened_.wait_until(lock, realStart + (*deadline - worldStart), isWanted);
        } else {
            wakened_.wait(lock, isWanted);
        }
    }
}

} // namespace sentrel::simulation
