#pragma once

#include "ports/HidEventSystem.hpp"
#include "simulation/mac/motion/MotionRecording.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace sentrel::simulation {

/// One event on its way to a client.
struct HidMessage {
    std::uint32_t type = 0;
    Acceleration acceleration;
    bool isNull = false; ///< the system passes no event
};

/// Carries events to one client's callback on its queue. Sending posts the channel itself and allocates nothing. Any
/// thread; the channel stays alive while a callback runs, even if the client is gone.
class HidEventChannel final : private Job {
public:
    using Callback = std::function<void(const ports::HidEvent*)>;

    void setCallback(Callback callback);
    void clearCallback();

    /// Messages go to this queue from now on; it must live until `unschedule`.
    void schedule(SerialQueue& queue);

    /// Withdraws messages that haven't arrived. A running callback continues.
    void unschedule();

    /// Sends a message; dropped without a scheduled queue.
    static void send(const std::shared_ptr<HidEventChannel>& channel, const HidMessage& message);

    /// Sends a message that arrives even if the channel is unscheduled meanwhile.
    void sendStray(const HidMessage& message);

private:
    void run() override;
    void drop() override;

    std::mutex mutex_;
    std::shared_ptr<const Callback> callback_;
    SerialQueue* queue_ = nullptr;
    std::vector<HidMessage> waiting_; // read from `next_` on; emptied, not freed, when all are read
    std::size_t next_ = 0;
    std::shared_ptr<HidEventChannel> posted_; // itself, while it waits or runs on the queue
};

} // namespace sentrel::simulation
