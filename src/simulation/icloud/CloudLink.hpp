#pragma once

#include "ports/CloudAccount.hpp"
#include "runtime/Async.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/SerialQueue.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/Guarded.hpp"
#include "simulation/icloud/CloudFaults.hpp"
#include "simulation/icloud/PrivateCloud.hpp"

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

class SimulatedNetwork;

/// One Mac's link to iCloud: account, latency and faults. It belongs to the system, not to the product's process: a
/// request is carried out even after the process that made it has ended. Each answer is noted as `cloud.request`
/// {`operation`, `outcome`: "ok" or the error's name}. Any thread.
class CloudLink {
public:
    using Observer = std::function<void(CloudOperation, CloudRequestPhase)>;

    /// The device's name is unique among the server's devices.
    CloudLink(Scheduler& hardware, ports::Journal& journal, PrivateCloud& server, SimulatedNetwork& network,
              std::string device, std::uint64_t seed);

    /// Makes a request and returns its answer. Throws `CloudError`. Main thread of the process. `serve` carries the
    /// request out at the server, on the link's queue; it must not refer to the product's objects.
    template <class Serve, class Answer = std::invoke_result_t<Serve&, const CloudDevice&>>
    [[nodiscard]] Async<Answer> request(CloudOperation operation, Serve serve)
    {
        co_await passGate(operation);
        auto exchange = std::make_shared<Exchange<Answer>>();
        const CloudDevice who = device();
        start(operation, exchange,
              [exchange, who, serve = std::move(serve)]() mutable { exchange->answer.emplace(serve(who)); });
        co_await exchange->answered.wait();
        if (exchange->error) {
            std::rethrow_exception(exchange->error);
        }
        co_return std::move(*exchange->answer);
    }

    [[nodiscard]] CloudDevice device() const { return {state_->user, device_}; }
    [[nodiscard]] PrivateCloud& server() { return server_; }
    [[nodiscard]] SimulatedNetwork& network() { return network_; }
    [[nodiscard]] CloudFaults& faults() { return faults_; }

    /// Faults of the calls themselves. One that raises becomes `CloudError` 12 (invalid arguments), the port's error
    /// for an exception; one that hangs is never answered.
    [[nodiscard]] FaultSwitches& callFaults() { return callFaults_; }

    /// The signed-in user and the account's status; initially "owner" and available.
    void setUser(std::string user) { state_->user = std::move(user); }
    void setAccountStatus(ports::CloudAccountStatus status) { state_->status = status; }
    [[nodiscard]] ports::CloudAccountStatus accountStatus() const { return state_->status; }

    /// Time from a later request to its answer; initially 80 ms. The server acts after half of it.
    void setLatency(Duration latency) { state_->latency = latency; }
    /// Latency of one operation, such as uploads over an asymmetric line; none: the general latency.
    void setLatency(CloudOperation operation, std::optional<Duration> latency)
    {
        state_->ownLatencies[operation] = latency;
    }
    [[nodiscard]] Duration latency() const { return state_->latency; }

    /// Called for each request that reaches the server, before and after the server acts, on the link's queue.
    void onRequest(Observer observer) { state_->observer = std::move(observer); }

    /// Requests so far, answered or not.
    [[nodiscard]] std::uint64_t requests(CloudOperation operation) const;
    [[nodiscard]] std::uint64_t requests() const;

    /// The highest number of such requests in flight at once.
    [[nodiscard]] std::uint64_t mostAtATime(CloudOperation operation) const;

    /// Runs the work on the link's queue after the delay, if the link still exists.
    void later(Duration delay, std::function<void()> work);

private:
    struct Pending {
        virtual ~Pending() = default;
        Semaphore answered;
        std::exception_ptr error;
    };
    template <class Answer> struct Exchange final : Pending {
        std::optional<Answer> answer;
    };
    struct Count {
        std::uint64_t made = 0;
        std::uint64_t underWay = 0;
        std::uint64_t mostUnderWay = 0;
    };
    struct State {
        std::string user = "owner";
        ports::CloudAccountStatus status = ports::CloudAccountStatus::available;
        Duration latency = std::chrono::milliseconds{80};
        std::map<CloudOperation, std::optional<Duration>> ownLatencies;
        Observer observer;
        std::map<CloudOperation, Count> counts;
    };

    struct Request;

    [[nodiscard]] Async<void> passGate(CloudOperation operation);
    void start(CloudOperation operation, std::shared_ptr<Pending> pending, std::function<void()> serve);
    [[nodiscard]] std::optional<ports::CloudError> refusal(CloudOperation operation) const;
    void arrive(const std::shared_ptr<Request>& request);
    void serve(Request& request);
    void answer(const std::shared_ptr<Request>& request);
    void tell(CloudOperation operation, CloudRequestPhase phase);

    ports::Journal& journal_;
    PrivateCloud& server_;
    SimulatedNetwork& network_;
    const std::string device_;
    CloudFaults faults_;
    FaultSwitches callFaults_{};
    Guarded<State> state_;
    SerialQueue queue_; // last: its destructor waits for running work
};

} // namespace sentrel::simulation
