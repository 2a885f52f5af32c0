#pragma once

#include "ports/LoginAuthentication.hpp"
#include "runtime/SerialQueue.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/Word.hpp"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

/// The outcome of a request for the Mac login.
enum class LoginAnswer {
    succeed,
    fail,
    cancel,
    unavailable, ///< the system can't ask: no panel is shown
};

/// The words for answers in scenarios and in the journal.
inline constexpr std::array<Word<LoginAnswer>, 4> loginWords{{
    {"succeed", LoginAnswer::succeed},
    {"fail", LoginAnswer::fail},
    {"cancel", LoginAnswer::cancel},
    {"unavailable", LoginAnswer::unavailable},
}};

[[nodiscard]] constexpr std::string_view nameOf(LoginAnswer answer)
{
    return wordFor(loginWords, answer);
}

/// The system's login panel and the person in front of it, who has no biometry to log in with. One panel is shown at a
/// time; further requests wait for their turn. Each request is noted as `login` with its `reason` and `answer`
/// (`invalidated` if the application released it first). Any thread; requests are made on the main thread.
class SimulatedLogin final : public ports::LoginAuthentication {
public:
    SimulatedLogin(Scheduler& scheduler, ports::Journal& journal);

    [[nodiscard]] std::unique_ptr<ports::LoginContext> makeContext() override;

    /// Sets the answer to panels from now on, including the one shown.
    void setAnswer(LoginAnswer answer);

    /// Time until a panel is answered, 0 at first; none leaves it to `answerPanel`. Holds for panels shown from now on.
    void setAnswerDelay(std::optional<Duration> delay);

    /// The system's description of why it can't ask; none if it has none.
    void setUnavailabilityDescription(std::optional<std::string> description);

    /// Answers the shown panel; false if there is none.
    bool answerPanel(LoginAnswer answer);

    /// The reason on the panel; none while no panel is shown.
    [[nodiscard]] std::optional<std::string> panelReason() const;

    /// The reasons of all panels shown so far.
    [[nodiscard]] std::vector<std::string> reasonsAsked() const;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    class Context;
    struct Panel;
    struct Shared;

    static Async<void> show(std::shared_ptr<Shared> shared, std::shared_ptr<Panel> panel);

    std::shared_ptr<Shared> shared_;
    SerialQueue panels_; // one held job for each panel; the queue's end closes them
};

} // namespace sentrel::simulation
