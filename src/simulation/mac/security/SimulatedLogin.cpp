#include "simulation/mac/security/SimulatedLogin.hpp"

#include "foundation/Fatal.hpp"
#include "ports/Journal.hpp"
#include "runtime/Semaphore.hpp"
#include "simulation/Events.hpp"
#include "simulation/Guarded.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

// <LocalAuthentication/LAPublicDefines.h>. The other policies, such as biometry alone, need hardware that this Mac
// lacks: they can't be evaluated.
constexpr std::int64_t deviceOwnerAuthentication = 2;

} // namespace

/// A request, whether its panel is shown yet or not.
struct SimulatedLogin::Panel {
    std::string reason;
    std::function<void(bool)> reply;
    // Guarded by the state's mutex.
    std::optional<LoginAnswer> givenAnswer;
    bool isInvalidated = false;
    Semaphore decided;
};

/// State shared by the requests, which keep it alive: the application may release one after the login's end.
struct SimulatedLogin::Shared {
    struct State {
        LoginAnswer answer = LoginAnswer::succeed;
        std::optional<Duration> answerDelay{Duration::zero()};
        std::optional<std::string> unavailabilityDescription;
        std::shared_ptr<Panel> shown;
        std::vector<std::string> reasonsAsked;
    };

    Shared(Scheduler& clock, ports::Journal& log) : scheduler(clock), journal(log) {}

    void note(std::string_view reason, std::string_view outcome) { journal.note(events::LoginAsked{reason, outcome}); }

    Scheduler& scheduler;
    ports::Journal& journal;
    Guarded<State> state;
};

class SimulatedLogin::Context final : public ports::LoginContext {
public:
    Context(std::shared_ptr<Shared> shared, SerialQueue& panels, FaultSwitches& faults)
        : shared_(std::move(shared)), panels_(panels), faults_(faults)
    {
    }

    ~Context() override
    {
        if (panel_ != nullptr) {
            {
                const auto state = shared_->state.lock();
                panel_->isInvalidated = true;
            }
            panel_->decided.signal();
        }
    }

    void setLocalizedReason(const std::string& reason) override { reason_ = reason; }

    [[nodiscard]] Evaluability canEvaluatePolicy(std::int64_t policy) override
    {
        faults_.call("canEvaluatePolicy");
        Evaluability evaluability;
        {
            const auto state = shared_->state.lock();
            evaluability.canEvaluate = policy == deviceOwnerAuthentication && state->answer != LoginAnswer::unavailable;
            if (!evaluability.canEvaluate) {
                evaluability.errorDescription = state->unavailabilityDescription;
            }
        }
        if (!evaluability.canEvaluate) {
            shared_->note(reason_, nameOf(LoginAnswer::unavailable));
        }
        return evaluability;
    }

    void evaluatePolicy(std::int64_t policy, const std::string& reason, std::function<void(bool)> reply) override
    {
        faults_.call("evaluatePolicy");
        if (panel_ != nullptr) {
            fatalError("a simulated login context is asked twice");
        }
        if (policy != deviceOwnerAuthentication) {
            return reply(false);
        }
        panel_ = std::make_shared<Panel>();
        panel_->reason = reason;
        panel_->reply = std::move(reply);
        panels_.async(show(shared_, panel_));
    }

private:
    std::shared_ptr<Shared> shared_;
    SerialQueue& panels_;
    FaultSwitches& faults_;
    std::string reason_;
    std::shared_ptr<Panel> panel_;
};

SimulatedLogin::SimulatedLogin(Scheduler& scheduler, ports::Journal& journal)
    : shared_(std::make_shared<Shared>(scheduler, journal)),
      panels_(scheduler, "login panels", QualityOfService::userInteractive)
{
}

std::unique_ptr<ports::LoginContext> SimulatedLogin::makeContext()
{
    faults_.call("makeContext");
    return std::make_unique<Context>(shared_, panels_, faults_);
}

Async<void> SimulatedLogin::show(std::shared_ptr<Shared> shared, std::shared_ptr<Panel> panel)
{
    std::optional<Duration> delay;
    {
        const auto state = shared->state.lock();
        delay = state->answerDelay;
        if (!panel->isInvalidated) {
            state->shown = panel;
            state->reasonsAsked.push_back(panel->reason);
        }
    }
    if (delay) {
        co_await panel->decided.waitUntil(shared->scheduler.now() + *delay);
    } else {
        co_await panel->decided.wait();
    }
    std::optional<LoginAnswer> answer;
    {
        const auto state = shared->state.lock();
        state->shown.reset();
        if (!panel->isInvalidated) {
            answer = panel->givenAnswer.value_or(state->answer);
        }
    }
    shared->note(panel->reason, answer ? nameOf(*answer) : "invalidated");
    const auto reply = std::exchange(panel->reply, nullptr);
    reply(answer == LoginAnswer::succeed);
}

void SimulatedLogin::setAnswer(LoginAnswer answer)
{
    shared_->state->answer = answer;
}

void SimulatedLogin::setAnswerDelay(std::optional<Duration> delay)
{
    shared_->state->answerDelay = delay;
}

void SimulatedLogin::setUnavailabilityDescription(std::optional<std::string> description)
{
    shared_->state->unavailabilityDescription = std::move(description);
}

bool SimulatedLogin::answerPanel(LoginAnswer answer)
{
    const auto state = shared_->state.lock();
    if (state->shown == nullptr || state->shown->givenAnswer) {
        return false;
    }
    state->shown->givenAnswer = answer;
    state->shown->decided.signal();
    return true;
}

std::optional<std::string> SimulatedLogin::panelReason() const
{
    const auto state = shared_->state.lock();
    return state->shown == nullptr ? std::nullopt : std::optional{state->shown->reason};
}

std::vector<std::string> SimulatedLogin::reasonsAsked() const
{
    return shared_->state->reasonsAsked;
}

} // namespace sentrel::simulation
