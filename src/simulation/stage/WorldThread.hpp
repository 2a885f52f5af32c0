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

/// Lets a virtual world live in real time: one thread moves its clock along with the machine's own and sleeps while
/// nothing is due. Everything in the world happens on that thread, so that it needs no locks, and behaves in real time
/// exactly as it does in virtual time. Other threads reach in through `call`.
class WorldThread {
public:
    explicit WorldThread(VirtualClock& clock) : clock_(clock) {}
    WorldThread(const WorldThread&) = delete;

    /// Stops.
    ~WorldThread() { stop(); }

    /// Called on the world's thread after each time that something may have happened. Set before `start`.
    std::function<void()> happened;

    /// Begins; the world's time goes on from where it stands.
    void start();

    /// Ends the thread, after the calls that it has taken. Not on the world's thread.
    void stop();

    /// Runs the function on the world's thread, gives its value, and throws what it throws; `std::runtime_error` when
    /// the world has stopped. Not on the world's thread.
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
