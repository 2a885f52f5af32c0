#include "simulation/icloud/SimulatedRemoteNotifications.hpp"

#include "runtime/Scheduler.hpp"
#include "simulation/icloud/CloudLink.hpp"
#include "simulation/icloud/SimulatedNetwork.hpp"

#include <nlohmann/json.hpp>

#include <mutex>
#include <utility>
#include <vector>

namespace sentrel::simulation {

namespace {

constexpr std::int64_t queryNotification = 1; // CKNotificationType
constexpr std::int64_t recordZoneNotification = 2;
constexpr std::int64_t databaseNotification = 4;

/// The kind of a CloudKit dictionary and its part for that kind.
std::optional<std::pair<std::int64_t, const Json*>> kindOf(const Json& cloudKit)
{
    for (const auto& [key, type] : {std::pair{"qry", queryNotification}, std::pair{"fet", recordZoneNotification},
                                    std::pair{"met", databaseNotification}}) {
        const Json* const part = member(cloudKit, key);
        if (part != nullptr && part->is_object()) {
            return std::pair{type, part};
        }
    }
    return std::nullopt;
}

std::string subscriptionOf(const Json& push)
{
    const Json* const cloudKit = member(push, "ck");
    const auto kind = cloudKit == nullptr ? std::nullopt : kindOf(*cloudKit);
    return kind ? textMember(*kind->second, "sid").value_or("") : "";
}

} // namespace

/// Shared with jobs and calls on other threads, which may outlive the service.
struct SimulatedRemoteNotifications::State : std::enable_shared_from_this<State> {
    explicit State(Scheduler& runsProcess) : process(runsProcess) {}

    /// Calls the current process's receiver on its main thread, unless that process has ended meanwhile.
    void tell(std::function<void(const Receiver&)> news)
    {
        const std::lock_guard guard{mutex};
        post(process.mainExecutor(), [state = shared_from_this(), to = receiver, news = std::move(news)] {
            if (to != nullptr && to == state->receiver) {
                news(*to);
            }
        });
    }

    void deliver(Json push)
    {
        tell([push = std::move(push)](const Receiver& to) {
            if (to.didReceive) {
                to.didReceive(push);
            }
        });
    }

    /// Handles a push that reaches this Mac's network.
    void arrive(const std::string& user, const Json& push, CloudLink& link)
    {
        if (user != link.device().user) {
            return;
        }
        {
            const std::lock_guard guard{mutex};
            if (!isRegistered) {
                return;
            }
            if (!link.network().isUp()) {
                std::erase_if(waiting,
                              [&](const Json& older) { return subscriptionOf(older) == subscriptionOf(push); });
                waiting.push_back(push);
                return;
            }
        }
        deliver(push);
    }

    void answerRegistration(bool isNetworkUp)
    {
        std::optional<std::string> why;
        {
            const std::lock_guard guard{mutex};
            if (!isRegistering || !isNetworkUp) {
                return;
            }
            isRegistering = false;
            why = failure;
            isRegistered = !why;
        }
        tell([why](const Receiver& to) {
            if (!why && to.didRegister) {
                to.didRegister();
            } else if (why && to.didFailToRegister) {
                to.didFailToRegister(*why);
            }
        });
    }

    void networkCameBack()
    {
        std::vector<Json> late;
        {
            const std::lock_guard guard{mutex};
            late.swap(waiting);
        }
        answerRegistration(true);
        for (Json& push : late) {
            deliver(std::move(push));
        }
    }

    Scheduler& process;
    std::mutex mutex;
    std::shared_ptr<const Receiver> receiver; // changed on the main thread only, and read there without the lock
    std::optional<std::string> failure;
    bool isRegistering = false;
    bool isRegistered = false;
    std::vector<Json> waiting; // for the network, oldest first
};

SimulatedRemoteNotifications::SimulatedRemoteNotifications(CloudLink& link, Scheduler& process)
    : link_(link), state_(std::make_shared<State>(process))
{
    pushes_ = link.server().receivePushes(
        link.device().device, [state = state_, &link](const std::string& user, const Json& push) {
            link.later(link.latency() / 2, [state, &link, user, push] { state->arrive(user, push, link); });
        });
    network_ = link.network().observe([state = state_](ports::NetworkPathStatus status) {
        if (status == ports::NetworkPathStatus::satisfied) {
            state->networkCameBack();
        }
    });
}

SimulatedRemoteNotifications::~SimulatedRemoteNotifications() = default;

void SimulatedRemoteNotifications::setReceiver(Receiver receiver)
{
    faults_.call("setReceiver");
    const std::lock_guard guard{state_->mutex};
    state_->receiver = std::make_shared<const Receiver>(std::move(receiver));
}

void SimulatedRemoteNotifications::registerForRemoteNotifications()
{
    faults_.call("registerForRemoteNotifications");
    {
        const std::lock_guard guard{state_->mutex};
        state_->isRegistering = true;
    }
    link_.later(link_.latency(), [state = state_, &link = link_] { state->answerRegistration(link.network().isUp()); });
}

std::optional<ports::CloudNotification> SimulatedRemoteNotifications::cloudNotification(const Json& userInfo)
{
    faults_.call("cloudNotification");
    const Json* const cloudKit = member(userInfo, "ck");
    const auto kind = cloudKit == nullptr ? std::nullopt : kindOf(*cloudKit);
    if (!kind) {
        return std::nullopt;
    }
    ports::CloudNotification notification;
    notification.subscriptionID = textMember(*kind->second, "sid");
    if (kind->first == queryNotification) {
        notification.recordName = textMember(*kind->second, "rid");
    }
    return notification;
}

void SimulatedRemoteNotifications::setFailure(std::optional<std::string> why)
{
    const std::lock_guard guard{state_->mutex};
    state_->failure = std::move(why);
}

void SimulatedRemoteNotifications::inject(const Json& userInfo)
{
    state_->deliver(userInfo);
}

void SimulatedRemoteNotifications::endProcess()
{
    const std::lock_guard guard{state_->mutex};
    state_->receiver.reset();
    state_->isRegistering = false;
    state_->isRegistered = false;
    state_->waiting.clear();
}

} // namespace sentrel::simulation
