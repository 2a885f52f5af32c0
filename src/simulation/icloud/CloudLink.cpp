#include "simulation/icloud/CloudLink.hpp"

#include "ports/Journal.hpp"
#include "simulation/Events.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/SimulatedNetwork.hpp"

#include <algorithm>

namespace sentrel::simulation {

namespace {

using ports::CloudAccountStatus;
using ports::CloudError;

// Delay of the system's own answers, which never come inside the call.
constexpr Duration promptly = std::chrono::milliseconds{2};

std::optional<CloudError> objectionOf(CloudAccountStatus status)
{
    switch (status) {
    case CloudAccountStatus::available:
        return std::nullopt;
    case CloudAccountStatus::temporarilyUnavailable:
        return cloudError(CKError::accountTemporarilyUnavailable);
    default:
        return cloudError(CKError::notAuthenticated);
    }
}

std::string outcomeOf(const std::exception_ptr& error)
{
    if (!error) {
        return "ok";
    }
    try {
        std::rethrow_exception(error);
    } catch (const CloudError& failure) {
        return cloudErrorName(failure.code);
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

} // namespace

/// A request on its way.
struct CloudLink::Request {
    CloudOperation operation;
    std::shared_ptr<Pending> pending;
    std::function<void()> serve;
    std::optional<CloudFault> fault;
    Duration wayBack{};
    bool needsNetwork = true;
};

CloudLink::CloudLink(Scheduler& hardware, ports::Journal& journal, PrivateCloud& server, SimulatedNetwork& network,
                     std::string device, std::uint64_t seed)
    : journal_(journal),
      server_(server),
      network_(network),
      device_(std::move(device)),
      faults_(seed),
      queue_(hardware, "iCloud", QualityOfService::utility)
{
}

Async<void> CloudLink::passGate(CloudOperation operation)
{
    try {
        co_await callFaults_.awaitedCall(nameOf(operation));
    } catch (const Raised&) {
        throw cloudError(CKError::invalidArguments);
    }
}

void CloudLink::start(CloudOperation operation, std::shared_ptr<Pending> pending, std::function<void()> serve)
{
    auto request = std::make_shared<Request>();
    request->operation = operation;
    request->pending = std::move(pending);
    request->serve = std::move(serve);
    request->needsNetwork = operation != CloudOperation::accountStatus;
    Duration latency{};
    {
        const auto state = state_.lock();
        const auto own = state->ownLatencies.find(operation);
        latency = own != state->ownLatencies.end() ? own->second.value_or(state->latency) : state->latency;
        Count& count = state->counts[operation];
        ++count.made;
        count.mostUnderWay = std::max(count.mostUnderWay, ++count.underWay);
    }
    request->wayBack = latency - latency / 2;
    if (auto error = refusal(operation)) {
        request->pending->error = std::make_exception_ptr(std::move(*error));
        later(std::min(promptly, latency), [this, request] { answer(request); });
        return;
    }
    request->fault = faults_.strike(operation);
    later(latency / 2, [this, request] { arrive(request); });
}

/// The system's refusal of a request, without asking the server; or none.
std::optional<CloudError> CloudLink::refusal(CloudOperation operation) const
{
    if (operation == CloudOperation::accountStatus) {
        return std::nullopt;
    }
    if (auto objection = objectionOf(accountStatus())) {
        return objection;
    }
    return network_.isUp() ? std::nullopt : std::optional{cloudError(CKError::networkUnavailable)};
}

void CloudLink::arrive(const std::shared_ptr<Request>& request)
{
    serve(*request);
    later(request->wayBack, [this, request] { answer(request); });
}

void CloudLink::serve(Request& request)
{
    try {
        if (request.needsNetwork && !network_.isUp()) {
            throw cloudError(CKError::networkFailure);
        }
        if (request.fault && !request.fault->losesAnswer) {
            throw CloudError{request.fault->error};
        }
        tell(request.operation, CloudRequestPhase::beforeEffect);
        request.serve();
        tell(request.operation, CloudRequestPhase::afterEffect);
        if (request.fault) {
            throw CloudError{request.fault->error};
        }
    } catch (const std::exception&) {
        request.pending->error = std::current_exception();
    }
    request.serve = nullptr;
}

void CloudLink::answer(const std::shared_ptr<Request>& request)
{
    std::exception_ptr& error = request->pending->error;
    if (!error && request->needsNetwork && !network_.isUp()) {
        error = std::make_exception_ptr(cloudError(CKError::networkFailure)); // carried out; the answer is lost
    }
    journal_.note(events::CloudRequest{nameOf(request->operation), outcomeOf(error)});
    --state_->counts[request->operation].underWay;
    request->pending->answered.signal();
}

void CloudLink::tell(CloudOperation operation, CloudRequestPhase phase)
{
    if (const Observer observer = state_->observer) {
        observer(operation, phase);
    }
}

void CloudLink::later(Duration delay, std::function<void()> work)
{
    queue_.asyncAfter(delay, std::make_shared<WorkItem>(std::move(work)));
}

std::uint64_t CloudLink::requests(CloudOperation operation) const
{
    const auto state = state_.lock();
    const auto count = state->counts.find(operation);
    return count == state->counts.end() ? 0 : count->second.made;
}

std::uint64_t CloudLink::requests() const
{
    const auto state = state_.lock();
    std::uint64_t total = 0;
    for (const auto& [operation, count] : state->counts) {
        total += count.made;
    }
    return total;
}

std::uint64_t CloudLink::mostAtATime(CloudOperation operation) const
{
    const auto state = state_.lock();
    const auto count = state->counts.find(operation);
    return count == state->counts.end() ? 0 : count->second.mostUnderWay;
}

} // namespace sentrel::simulation
