#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace sentrel::simulation {

/// Hands server-sent events to every page that listens. A page that doesn't keep up is cut off, and starts anew by
/// connecting again. Any thread.
class EventHub {
public:
    /// One page's stream.
    class Subscriber {
    public:
        /// The next event, as it is sent; empty while nothing waits, null when the stream has ended.
        [[nodiscard]] std::shared_ptr<const std::string> next();

        /// Calls this whenever `next` may give something new, on the thread that has published it. It must not wait,
        /// nor call this stream. After the call no former listener is running.
        void setListener(std::function<void()> listener);

        void push(std::shared_ptr<const std::string> text);
        void close();
        [[nodiscard]] bool isClosed() const;

    private:
        mutable std::mutex mutex_;
        std::function<void()> listener_;
        std::deque<std::shared_ptr<const std::string>> waiting_; // shared: sixteen pages take no more than one
        std::size_t bytes_ = 0;
        bool isClosed_ = false;
    };

    /// So many pages may listen at once.
    static constexpr std::size_t mostSubscribers = 16;

    /// A new stream; null when there are too many, or everything has been closed.
    [[nodiscard]] std::shared_ptr<Subscriber> subscribe();
    void unsubscribe(const std::shared_ptr<Subscriber>& subscriber);

    /// Sends an event to all.
    void publish(const std::string& event, const std::string& data);

    /// Sends an event to one.
    void send(Subscriber& subscriber, const std::string& event, const std::string& data);

    /// How many pages listen.
    [[nodiscard]] std::size_t subscribers() const;

    /// Ends all streams, for good.
    void closeAll();

private:
    [[nodiscard]] std::shared_ptr<const std::string> framed(const std::string& event, const std::string& data);

    mutable std::mutex mutex_;
    std::list<std::shared_ptr<Subscriber>> subscribers_;
    std::uint64_t lastId_ = 0;
    bool isClosed_ = false;
};

} // namespace sentrel::simulation
