#include "simulator/serve/Connections.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

#include <sys/socket.h>

namespace sentrel::simulator {

Connections::Entry::Entry(Connections& all, int socket) : all_(all), socket_(socket)
{
    const std::lock_guard guard{all_.mutex_};
    all_.waiting_.push_back(socket_);
    if (all_.areCut_) {
        ::shutdown(socket_, SHUT_RDWR);
    }
}

Connections::Entry::~Entry()
{
    const std::lock_guard guard{all_.mutex_};
    all_.waiting_.remove(socket_);
    all_.busy_.remove(socket_);
}

void Connections::Entry::setBusy(bool isBusy)
{
    const std::lock_guard guard{all_.mutex_};
    all_.waiting_.remove(socket_);
    all_.busy_.remove(socket_);
    (isBusy ? all_.busy_ : all_.waiting_).push_back(socket_);
}

void Connections::cutLongestWaiting()
{
    const std::lock_guard guard{mutex_};
    if (!waiting_.empty()) {
        // Only what it sends: should its request have just become whole, it gets the answer.
        ::shutdown(waiting_.front(), SHUT_RD);
        waiting_.splice(waiting_.end(), waiting_, waiting_.begin());
    }
}

void Connections::cutAll()
{
    const std::lock_guard guard{mutex_};
    areCut_ = true;
    for (const auto* sockets : {&waiting_, &busy_}) {
        std::ranges::for_each(*sockets, [](int socket) { ::shutdown(socket, SHUT_RDWR); });
    }
}

bool Connections::areCut() const
{
    const std::lock_guard guard{mutex_};
    return areCut_;
}

void ConnectionThreads::enqueue(std::function<void()> connection)
{
    constexpr std::chrono::milliseconds pause{20};
    std::unique_lock lock{mutex_};
    if (idle_ == 0 && threads_.size() < most_) {
        ++idle_;
        threads_.emplace_back([this] { work(); });
    }
    while (idle_ == 0) {
        connections_.cutLongestWaiting();
        becameIdle_.wait_for(lock, pause, [this] { return idle_ > 0; });
    }
    --idle_;
    jobs_.push_back(std::move(connection));
    arrived_.notify_one();
}

void ConnectionThreads::shutdown()
{
    {
        const std::lock_guard guard{mutex_};
        hasEnded_ = true;
    }
    arrived_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

void ConnectionThreads::work()
{
    std::unique_lock lock{mutex_};
    while (true) {
        arrived_.wait(lock, [this] { return hasEnded_ || !jobs_.empty(); });
        if (jobs_.empty()) {
            return;
        }
        const auto connection = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        connection();
        lock.lock();
        ++idle_;
        becameIdle_.notify_one();
    }
}

} // namespace sentrel::simulator
