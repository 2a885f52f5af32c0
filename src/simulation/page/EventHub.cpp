#include "simulation/page/EventHub.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

/// Most bytes waiting for one page: far more than the whole state of a usual Mac.
constexpr std::size_t mostWaiting = std::size_t{8} << 20;

} // namespace

std::shared_ptr<const std::string> EventHub::Subscriber::next()
{
    static const auto nothing = std::make_shared<const std::string>();
    const std::lock_guard guard{mutex_};
    if (isClosed_) {
        return nullptr;
    }
    if (waiting_.empty()) {
        return nothing;
    }
    auto text = std::move(waiting_.front());
    waiting_.pop_front();
    bytes_ -= text->size();
    return text;
}

void EventHub::Subscriber::setListener(std::function<void()> listener)
{
    const std::lock_guard guard{mutex_};
    listener_ = std::move(listener);
}

void EventHub::Subscriber::push(std::shared_ptr<const std::string> text)
{
    const std::lock_guard guard{mutex_};
    // A single event of any size passes; else a page could never show a Mac with very many alerts.
    if (isClosed_ || (!waiting_.empty() && bytes_ + text->size() > mostWaiting)) {
        isClosed_ = true;
        waiting_.clear();
        bytes_ = 0;
    } else {
        bytes_ += text->size();
        waiting_.push_back(std::move(text));
    }
    if (listener_) {
        listener_();
    }
}

void EventHub::Subscriber::close()
{
    const std::lock_guard guard{mutex_};
    isClosed_ = true;
    if (listener_) {
        listener_();
    }
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

std::shared_ptr<const std::string> EventHub::framed(const std::string& event, const std::string& data)
{
    auto text = std::make_shared<std::string>("id: " + std::to_string(++lastId_) + "\nevent: " + event + "\ndata: ");
    text->reserve(text->size() + data.size() + 2);
    *text += data;
    *text += "\n\n";
    return text;
}

void EventHub::publish(const std::string& event, const std::string& data)
{
    const std::lock_guard guard{mutex_};
    const auto text = framed(event, data);
    for (const auto& subscriber : subscribers_) {
        subscriber->push(text);
    }
}

void EventHub::send(Subscriber& subscriber, const std::string& event, const std::string& data)
{
    const std::lock_guard guard{mutex_};
    subscriber.push(framed(event, data));
}

std::size_t EventHub::subscribers() const
{
    const std::lock_guard guard{mutex_};
    return static_cast<std::size_t>(std::count_if(subscribers_.begin(), subscribers_.end(),
                                                  [](const auto& subscriber) { return !subscriber->isClosed(); }));
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

} // namespace sentrel::simulation
