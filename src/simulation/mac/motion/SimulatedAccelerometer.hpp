#pragma once

#include "ports/HidEventSystem.hpp"
#include "ports/Journal.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/motion/HidEventChannel.hpp"
#include "simulation/mac/motion/MotionRecording.hpp"
#include "simulation/mac/motion/MotionTimeline.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace sentrel::simulation {

/// The MacBook's accelerometer behind the HID event system. Present at first, and silent until it is given samples. It
/// works only while a matching client is scheduled and the machine is awake; samples due meanwhile are lost. Any
/// thread; it outlives its clients.
///
/// Faults: `client` (none is created), `services` (no list is given), `report-interval` (refused), `late-event` (a
/// violent movement arrives after the client has been unscheduled).
class SimulatedAccelerometer final : public ports::HidEventSystem {
public:
    /// Samples are timed by the hardware's scheduler; the seed decides the sensor's noise.
    SimulatedAccelerometer(Scheduler& hardware, ports::Journal& journal, std::uint64_t seed);
    ~SimulatedAccelerometer() override;

    [[nodiscard]] std::unique_ptr<ports::HidClient> createClient() override;

    void setPresent(bool isPresent);
    [[nodiscard]] bool isPresent() const;

    /// One sample, now.
    void sample(const Acceleration& acceleration);

    /// One event of any type, now; its first three fields have the values given.
    void sendEvent(std::uint32_t type, const Acceleration& values);

    /// One callback without an event, now.
    void sendNullEvent();

    /// Delivers the recording's samples from now on, at their own times; replaces one that is still playing.
    void play(MotionRecording recording);

    /// The machine lies at rest: samples of gravity and sensor noise at the report interval, by default 50 a second.
    /// They pause while a recording plays.
    void setResting(bool isResting);
    [[nodiscard]] bool isResting() const;

    /// Calls back for each delivered sample, on the delivering thread and under the device's lock: the callback must
    /// not call the device. Set before the first sample.
    void observe(std::function<void(const Acceleration&)> delivered) { delivered_ = std::move(delivered); }

    /// While the machine sleeps nothing is delivered.
    void setAsleep(bool isAsleep);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    class Client;
    class Service;

    /// Brings the device back to its own executor when the next sample is due.
    class Ticker final : public Timer, public Job {
    public:
        explicit Ticker(SimulatedAccelerometer& device) : device_(device) {}
        void fire() override { device_.executor_->post(*this); }
        void run() override { device_.tick(); }

    private:
        SimulatedAccelerometer& device_;
    };

    void setReportInterval(Duration interval);
    void attach(Client& client);
    void detach(Client& client);
    void send(const HidMessage& message);
    void tick();
    template <class Change> void change(Change apply);
    [[nodiscard]] bool isWorking() const;
    void broadcast(const HidMessage& message);

    Scheduler& scheduler_;
    ports::Journal& journal_;
    FaultSwitches faults_{"client", "services", "report-interval", "late-event"};
    mutable std::mutex mutex_;
    MotionTimeline timeline_;
    bool isPresent_ = true;
    bool isAsleep_ = false;
    bool isEnding_ = false;
    std::function<void(const Acceleration&)> delivered_;
    std::vector<Client*> scheduled_;
    Ticker ticker_{*this};
    std::unique_ptr<Executor> executor_;
};

} // namespace sentrel::simulation
