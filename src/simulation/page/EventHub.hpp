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

/// Sends server-sent events to all listening pages. A page that doesn't keep up is disconnected, and starts anew when
/// it reconnects. Any thread.
class EventHub {
public:
    /// One page's stream.
    class Subscriber {
    public:
        /// The text of the next event; empty while none is waiting, null if the stream has ended.
        [[nodiscard]] std::shared_ptr<const std::string> next();

        /// The listener is called whenever `next` may have something new, on the publishing thread. It must not block
        /// or call this stream. When this returns, no former listener is running.
        void setListener(std::function<void()> listener);

        void push(std::shared_ptr<const std::string> text);
        void close();
        [[nodiscard]] bool isClosed() const;

    private:
        mutable std::mutex mutex_;
        std::function<void()> listener_;
        std::deque<std::shared_ptr<const std::string>> waiting_; // shared by all pages
        std::size_t bytes_ = 0;
        bool isClosed_ = false;
    };

    /// Most pages that may listen at once.
    static constexpr std::size_t mostSubscribers = 16;

    /// A new stream; null if there are too many, or after `closeAll`.
    [[nodiscard]] std::shared_ptr<Subscriber> subscribe();
    void unsubscribe(const std::shared_ptr<Subscriber>& subscriber);

    /// Sends an event to all streams.
    void publish(const std::string& event, const std::string& data);

    /// Sends an event to one stream.
    void send(Subscriber& subscriber, const std::string& event, const std::string& data);

    /// Number of listening pages.
    [[nodiscard]] std::size_t subscribers() const;

    /// Ends all streams; new ones are refused.
    void closeAll();

private:
    [[nodiscard]] std::shared_ptr<const std::string> framed(const std::string& event, const std::string& data);

    mutable std::mutex mutex_;
    std::list<std::shared_ptr<Subscriber>> subscribers_;
    std::uint64_t lastId_ = 0;
    bool isClosed_ = false;
};

} // namespace sentrel::simulation
