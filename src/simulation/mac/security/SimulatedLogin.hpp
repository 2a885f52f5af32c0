#pragma once

#include "ports/LoginAuthentication.hpp"
#include "runtime/SerialQueue.hpp"
#include "simulation/FaultSwitches.hpp"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

/// What becomes of a request for the Mac login.
enum class LoginAnswer {
    succeed,
    fail,
    cancel,
    unavailable, ///< the system can't ask: no panel is shown
};

/// The word for an answer, as scenarios and the journal have it.
[[nodiscard]] std::string_view nameOf(LoginAnswer answer);

/// The system's login panel and the person in front of it, who has no biometry to log in with. One panel is shown at a
/// time; a further request waits for its turn. Each request is noted as `login` with its `reason` and `answer`
/// (`invalidated` when the application let go of it first). Any thread; requests are made on the main thread.
class SimulatedLogin final : public ports::LoginAuthentication {
public:
    SimulatedLogin(Scheduler& scheduler, ports::Journal& journal);

    [[nodiscard]] std::unique_ptr<ports::LoginContext> makeContext() override;

    /// How panels are answered from now on; the one that is shown too.
    void setAnswer(LoginAnswer answer);

    /// How long a panel is shown before it is answered, 0 at first; none leaves it to `answerPanel`. For panels that
    /// are shown from now on.
    void setAnswerDelay(std::optional<Duration> delay);

    /// Why the system can't ask, in its own words; none when it doesn't say.
    void setUnavailabilityDescription(std::optional<std::string> description);

    /// Answers the panel that is shown; false when there is none.
    bool answerPanel(LoginAnswer answer);

    /// The reason that the panel gives; none while no panel is shown.
    [[nodiscard]] std::optional<std::string> panelReason() const;

    /// The reasons of all panels shown so far.
    [[nodiscard]] std::vector<std::string> reasonsAsked() const;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    class Context;
    struct Panel;
    struct State;

    static Async<void> show(std::shared_ptr<State> state, std::shared_ptr<Panel> panel);

    std::shared_ptr<State> state_;
    SerialQueue panels_; // one held job for each panel; its end closes them
};

} // namespace sentrel::simulation
