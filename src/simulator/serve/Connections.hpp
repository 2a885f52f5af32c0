#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <httplib.h>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace sentrel::simulator {

/// The connections that are open, the one that has waited longest for its request first. Any thread.
class Connections {
public:
    /// One of them, as long as it is open. It waits for a request at first.
    class Entry {
    public:
        Entry(Connections& all, int socket);
        ~Entry();
        Entry(const Entry&) = delete;

        /// Whether a whole request is there, or the next one is waited for.
        void setBusy(bool isBusy);

    private:
        Connections& all_;
        int socket_;
    };

    /// Cuts off the one that has waited longest for its request, be it none or half of one.
    void cutLongestWaiting();

    /// Cuts off all, and all that come later.
    void cutAll();
    [[nodiscard]] bool areCut() const;

private:
    mutable std::mutex mutex_;
    std::list<int> waiting_;
    std::list<int> busy_;
    bool areCut_ = false;
};

/// A thread for each connection, up to a number. When there is none left, a connection that keeps one without having
/// asked for anything makes room.
class ConnectionThreads final : public httplib::TaskQueue {
public:
    ConnectionThreads(Connections& connections, std::size_t most) : connections_(connections), most_(most) {}
    ~ConnectionThreads() override = default;

    void enqueue(std::function<void()> connection) override;
    void shutdown() override;

private:
    void work();

    Connections& connections_;
    const std::size_t most_;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::condition_variable becameIdle_;
    std::deque<std::function<void()>> jobs_;
    std::size_t idle_ = 0;
    bool hasEnded_ = false;
    std::vector<std::thread> threads_;
};

} // namespace sentrel::simulator
