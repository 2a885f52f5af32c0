#pragma once

#include "runtime/VirtualScheduler.hpp"

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

namespace sentrel::simulation {

/// Runs a virtual world in real time: one thread advances its clock with the machine's and sleeps while nothing is due.
/// Everything in the world runs on that thread, without locks, exactly as in virtual time. Other threads use `call`.
class WorldThread {
public:
    explicit WorldThread(VirtualClock& clock) : clock_(clock) {}
    WorldThread(const WorldThread&) = delete;

    ~WorldThread() { stop(); }

    /// Called on the world's thread whenever something may have happened. Set before `start`.
    std::function<void()> happened;

    /// Starts the thread; the world's time continues from where it stands.
    void start();

    /// Ends the thread after the calls it has accepted. Don't call on the world's thread.
    void stop();

    /// Runs the function on the world's thread; returns its value or throws its exception. Throws `std::runtime_error`
    /// if the world has stopped. Don't call on the world's thread.
    template <class Function> auto call(Function function) -> std::invoke_result_t<Function&>
    {
        std::packaged_task<std::invoke_result_t<Function&>()> task{std::move(function)};
        auto result = task.get_future();
        if (!enqueue([&task] { task(); })) {
            throwStopped();
        }
        return result.get();
    }

private:
    [[noreturn]] static void throwStopped();
    [[nodiscard]] bool enqueue(std::function<void()> request);
    void live();

    VirtualClock& clock_;
    std::mutex mutex_;
    std::condition_variable wakened_;
    std::deque<std::function<void()>> requests_;
    bool isRunning_ = false;
    std::thread thread_;
};

} // namespace sentrel::simulation
