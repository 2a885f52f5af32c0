#include "simulator/serve/EventHub.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulator {

namespace {

/// What may wait for one page: far beyond a whole state.
constexpr std::size_t mostWaiting = std::size_t{8} << 20;

} // namespace

std::optional<std::string> EventHub::Subscriber::next(std::chrono::milliseconds wait)
{
    std::unique_lock lock{mutex_};
    arrived_.wait_for(lock, wait, [this] { return isClosed_ || !waiting_.empty(); });
    if (isClosed_) {
        return std::nullopt;
    }
    return std::exchange(waiting_, {});
}

void EventHub::Subscriber::push(const std::string& text)
{
    {
        const std::lock_guard guard{mutex_};
        if (waiting_.size() + text.size() > mostWaiting) {
            isClosed_ = true;
        } else {
            waiting_ += text;
        }
    }
    arrived_.notify_all();
}

void EventHub::Subscriber::close()
{
    {
        const std::lock_guard guard{mutex_};
        isClosed_ = true;
    }
    arrived_.notify_all();
}

bool EventHub::Subscriber::isClosed() const
{
    const std::lock_guard guard{mutex_};
    return isClosed_;
}

std::shared_ptr<EventHub::Subscriber> EventHub::subscribe()
{
    const std::lock_guard guard{mutex_};
    std::erase_if(subscribers_, [](const auto& subscriber) { return subscriber->isClosed(); });
    if (isClosed_ || subscribers_.size() >= mostSubscribers) {
        return nullptr;
    }
    return subscribers_.emplace_back(std::make_shared<Subscriber>());
}

void EventHub::unsubscribe(const std::shared_ptr<Subscriber>& subscriber)
{
    const std::lock_guard guard{mutex_};
    subscribers_.remove(subscriber);
}

std::string EventHub::framed(const std::string& event, const std::string& data)
{
    return "id: " + std::to_string(++lastId_) + "\nevent: " + event + "\ndata: " + data + "\n\n";
}

void EventHub::publish(const std::string& event, const std::string& data)
{
    const std::lock_guard guard{mutex_};
    const std::string text = framed(event, data);
    for (const auto& subscriber : subscribers_) {
        subscriber->push(text);
    }
}

void EventHub::send(Subscriber& subscriber, const std::string& event, const std::string& data)
{
    const std::lock_guard guard{mutex_};
    subscriber.push(framed(event, data));
}

bool EventHub::hasSubscribers() const
{
    const std::lock_guard guard{mutex_};
    return std::any_of(subscribers_.begin(), subscribers_.end(),
                       [](const auto& subscriber) { return !subscriber->isClosed(); });
}

void EventHub::closeAll()
{
    const std::lock_guard guard{mutex_};
    isClosed_ = true;
    for (const auto& subscriber : subscribers_) {
        subscriber->close();
    }
    subscribers_.clear();
}

} // namespace sentrel::simulator
