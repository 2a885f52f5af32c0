#include "simulation/icloud/SimulatedNetwork.hpp"

#include "runtime/SerialQueue.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

using Status = ports::NetworkPathStatus;
using Told = Listener<Status>;

/// The product's registration; its callback runs on the product's queue.
class Monitor final : public ports::Registration {
public:
    Monitor(std::shared_ptr<Told> product, ports::RegistrationPtr observation)
        : product_(std::move(product)), observation_(std::move(observation))
    {
    }
    ~Monitor() override
    {
        observation_.reset();
        product_->leave(); // changes still on the queue are dropped
    }

private:
    std::shared_ptr<Told> product_;
    ports::RegistrationPtr observation_;
};

} // namespace

ports::RegistrationPtr SimulatedNetwork::monitor(SerialQueue& queue, std::function<void(Status)> pathChanged)
{
    faults_.call("monitor");
    const auto product = std::make_shared<Told>(std::move(pathChanged));
    const auto tell = [&queue, product](Status status) {
        post(queue.executor(), [product, status] { product->tell(status); });
    };
    const std::lock_guard guard{mutex_};
    tell(status_);
    return std::make_unique<Monitor>(product, observe(tell));
}

void SimulatedNetwork::setStatus(Status status)
{
    {
        const std::lock_guard guard{mutex_};
        status_ = status;
    }
    const int times = faults_.strikes("status-twice") ? 2 : 1;
    for (const auto& observer : observers_.all()) {
        for (int time = 0; time < times; ++time) {
            observer->tell(status);
        }
    }
}

Status SimulatedNetwork::status() const
{
    const std::lock_guard guard{mutex_};
    return status_;
}

void SimulatedNetwork::setUp(bool isUp)
{
    setStatus(isUp ? Status::satisfied : Status::unsatisfied);
}

ports::RegistrationPtr SimulatedNetwork::observe(std::function<void(Status)> changed)
{
    return observers_.add(std::make_shared<Told>(std::move(changed)));
}

} // namespace sentrel::simulation
