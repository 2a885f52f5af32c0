#include "simulation/mac/motion/HidEventChannel.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

/// The client's view of a message. Field numbers begin at the type shifted left by 16 bits.
class MessageEvent final : public ports::HidEvent {
public:
    explicit MessageEvent(const HidMessage& message) : message_(message) {}

    [[nodiscard]] std::uint32_t type() const override { return message_.type; }

    [[nodiscard]] double floatValue(std::uint32_t field) const override
    {
        switch (field - (message_.type << 16U)) {
        case 0:
            return message_.acceleration.x;
        case 1:
            return message_.acceleration.y;
        case 2:
            return message_.acceleration.z;
        default:
            return 0.0;
        }
    }

private:
    const HidMessage& message_;
};

void deliver(const HidEventChannel::Callback& callback, const HidMessage& message)
{
    const MessageEvent event{message};
    callback(message.isNull ? nullptr : &event);
}

} // namespace

void HidEventChannel::setCallback(Callback callback)
{
    auto shared = std::make_shared<const Callback>(std::move(callback));
    const std::lock_guard guard{mutex_};
    callback_.swap(shared);
}

void HidEventChannel::clearCallback()
{
    std::shared_ptr<const Callback> old; // freed after the lock
    const std::lock_guard guard{mutex_};
    callback_.swap(old);
}

void HidEventChannel::schedule(SerialQueue& queue)
{
    const std::lock_guard guard{mutex_};
    queue_ = &queue;
}

void HidEventChannel::unschedule()
{
    std::shared_ptr<HidEventChannel> self; // released after the lock
    const std::lock_guard guard{mutex_};
    waiting_.clear();
    next_ = 0;
    if (queue_ != nullptr && queue_->executor().withdraw(*this)) {
        self = std::move(posted_);
    }
    queue_ = nullptr;
}

void HidEventChannel::send(const std::shared_ptr<HidEventChannel>& channel, const HidMessage& message)
{
    const std::lock_guard guard{channel->mutex_};
    if (channel->queue_ == nullptr) {
        return;
    }
    channel->waiting_.push_back(message);
    if (channel->posted_ == nullptr) {
        channel->posted_ = channel;
        channel->queue_->executor().post(*channel);
    }
}

void HidEventChannel::sendStray(const HidMessage& message)
{
    const std::lock_guard guard{mutex_};
    if (queue_ != nullptr && callback_ != nullptr) {
        queue_->async([callback = callback_, message] { deliver(*callback, message); });
    }
}

void HidEventChannel::run()
{
    std::shared_ptr<HidEventChannel> self; // from the last message on
    while (self == nullptr) {
        HidMessage message;
        std::shared_ptr<const Callback> callback;
        {
            const std::lock_guard guard{mutex_};
            if (next_ == waiting_.size()) {
                self = std::move(posted_); // withdrawn meanwhile
                return;
            }
            message = waiting_[next_++];
            callback = callback_;
            if (next_ == waiting_.size()) {
                waiting_.clear();
                next_ = 0;
                self = std::move(posted_);
            }
        }
        if (callback != nullptr) {
            deliver(*callback, message);
        }
    }
}

void HidEventChannel::drop()
{
    std::shared_ptr<HidEventChannel> self;
    const std::lock_guard guard{mutex_};
    waiting_.clear();
    next_ = 0;
    queue_ = nullptr;
    self = std::move(posted_);
}

} // namespace sentrel::simulation
