#pragma once

#include "ports/CloudAccount.hpp"
#include "runtime/Async.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/SerialQueue.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/icloud/CloudFaults.hpp"
#include "simulation/icloud/PrivateCloud.hpp"

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

class SimulatedNetwork;

/// A Mac's way to iCloud: who is signed in, how long requests take, what befalls them. It belongs to the system, not to
/// the product's process: a request that has been made is carried out though the process that made it has ended. Each
/// is noted as `cloud.request` {`operation`, `outcome`: "ok" or the error's name} when it is answered. Any thread.
class CloudLink {
public:
    using Observer = std::function<void(CloudOperation, CloudRequestPhase)>;

    /// The device's name tells it apart from all others of the server.
    CloudLink(Scheduler& hardware, ports::Journal& journal, PrivateCloud& server, SimulatedNetwork& network,
              std::string device, std::uint64_t seed);

    /// Makes a request and waits for its answer. `serve` does at the server what is asked, on the link's queue; it
    /// refers to nothing of the product's. Called on the process's main thread. Throws `CloudError`.
    template <class Answer>
    [[nodiscard]] Async<Answer> request(CloudOperation operation, std::function<Answer(const CloudDevice&)> serve)
    {
        co_await passGate(operation);
        auto exchange = std::make_shared<Exchange<Answer>>();
        const CloudDevice who = device();
        start(operation, exchange, [exchange, who, serve = std::move(serve)] { exchange->answer = serve(who); });
        co_await exchange->answered.wait();
        if (exchange->error) {
            std::rethrow_exception(exchange->error);
        }
        co_return std::move(*exchange->answer);
    }

    [[nodiscard]] CloudDevice device() const;
    [[nodiscard]] PrivateCloud& server() { return server_; }
    [[nodiscard]] SimulatedNetwork& network() { return network_; }
    [[nodiscard]] CloudFaults& faults() { return faults_; }

    /// Of the calls themselves. A request that raises throws `CloudError` with code 12 (invalid arguments), which the
    /// port makes of an exception; one that hangs is never answered.
    [[nodiscard]] FaultSwitches& callFaults() { return callFaults_; }

    /// Who is signed in, and what the system says of the account; "owner" and available at first.
    void setUser(std::string user);
    void setAccountStatus(ports::CloudAccountStatus status);
    [[nodiscard]] ports::CloudAccountStatus accountStatus() const;

    /// From a request to its answer; 80 ms at first. Half of it passes before the server acts. For later requests.
    void setLatency(Duration latency);
    /// The same for one kind of request, such as uploads over a line that is slow one way only; none: as all.
    void setLatency(CloudOperation operation, std::optional<Duration> latency);
    [[nodiscard]] Duration latency() const;

    /// Is told of each request that reaches the server, before and after the server acts, on the link's queue.
    void onRequest(Observer observer);

    /// Requests so far, answered or not.
    [[nodiscard]] std::uint64_t requests(CloudOperation operation) const;
    [[nodiscard]] std::uint64_t requests() const;

    /// The most requests of a kind that were under way at a time.
    [[nodiscard]] std::uint64_t mostAtATime(CloudOperation operation) const;

    /// Does something on the link's queue after a while, unless the link goes before.
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
    mutable std::mutex mutex_;
    std::string user_ = "owner";
    ports::CloudAccountStatus status_ = ports::CloudAccountStatus::available;
    Duration latency_ = std::chrono::milliseconds{80};
    std::map<CloudOperation, std::optional<Duration>> ownLatencies_;
    Observer observer_;
    std::map<CloudOperation, Count> counts_;
    SerialQueue queue_; // last: its end waits for what runs on it
};

} // namespace sentrel::simulation
