#include "simulation/stage/Player.hpp"

#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "simulation/stage/PlayFolder.hpp"
#include "simulation/stage/SettingsReader.hpp"

#include <nlohmann/json.hpp>

#include <utility>

namespace sentrel::simulation {

namespace {

std::string place(const Scenario& scenario, int line)
{
    return scenario.file + ":" + std::to_string(line) + ": ";
}

class Play {
public:
    Play(const Scenario& scenario, const PlayOptions& options, Audience& audience)
        : scenario_(scenario),
          audience_(audience),
          folder_(options.out),
          recordsSound_(folder_.isKept() || options.recordsSound),
          session_(scenario.mac, folder_.path(), options.resources, options.seed, MacSession::storyDate,
                   folder_.isKept() ? ServerDisk::folder : ServerDisk::memory)
    {
        refuseImpossibleSteps();
        if (scenario.mac.files) {
            folder_.copyFiles(*scenario.mac.files);
        }
        if (!leaveFromEarlierRun(session_, scenario)) {
            throw PlayError{"the keychain refuses the passcode"};
        }
        session_.log().observe([this](const Event& event) {
            if (!hasEnded_) { // the product's destruction is not part of the play
                audience_.happened(event);
            }
        });
        startKeeping();
    }

    ~Play() { audience_.leaves(session_); }
    Play(const Play&) = delete;

    PlayResult run()
    {
        audience_.begins(session_);
        survive([&] { session_.launch(); });
        for (const Step& step : scenario_.steps) {
            while (session_.clock().now() < Instant{step.at}) {
                survive([&] { liveUntil(Instant{step.at}); });
            }
            survive([&] { session_.clock().runReady(); });
            survive([&] { carryOut(step); });
            audience_.settled(session_);
            session_.restFromHanging();
            audience_.reached(session_.seconds());
        }
        hasEnded_ = true;
        result_.seconds = session_.seconds();
        finishKeeping();
        audience_.ends(session_, recordsSound_ ? folder_.sound() : std::filesystem::path{});
        return std::move(result_);
    }

private:
    /// An exception that the product lets out of its code ends the process, as on a Mac; the machine lives on.
    template <class Part> void survive(Part part)
    {
        try {
            part();
        } catch (const Raised& raised) {
            audience_.died(session_.seconds(), raised);
            session_.crash();
        }
    }

    void liveUntil(Instant end)
    {
        constexpr Duration longest = std::chrono::minutes{1}; // between two calls of the audience
        VirtualClock& clock = session_.clock();
        while (clock.now() + longest < end) {
            runUntil(clock.now() + longest);
            audience_.reached(session_.seconds());
        }
        runUntil(end);
        audience_.reached(session_.seconds());
    }

    void runUntil(Instant time)
    {
        VirtualClock& clock = session_.clock();
        while (audience_.wantsEachInstant()) {
            const auto next = clock.nextDeadline();
            if (!next || *next > time) {
                break;
            }
            clock.runUntil(*next);
            audience_.settled(session_);
        }
        clock.runUntil(time);
    }

    void refuseImpossibleSteps()
    {
        for (const Step& step : scenario_.steps) {
            if (const auto* const action = std::get_if<Action>(&step.content)) {
                const std::string why = action->objection(session_);
                if (!why.empty()) {
                    throw PlayError{place(scenario_, step.line) + why};
                }
            }
        }
    }

    void startKeeping()
    {
        if (folder_.isKept() && !session_.log().writeTo(folder_.events())) {
            throw PlayError{"can't write '" + folder_.events().string() + "'"};
        }
        session_.log().keepNothing(); // the audience hears of each event
        if (recordsSound_ && !session_.mac().speaker.startRecording(folder_.sound())) {
            throw PlayError{"can't write '" + folder_.sound().string() + "'"};
        }
    }

    void finishKeeping()
    {
        if (recordsSound_ && !session_.mac().speaker.finishRecording()) {
            throw PlayError{"'" + folder_.sound().string() + "' could not be written completely"};
        }
        if (folder_.isKept() && !session_.log().isWrittenWhole()) {
            throw PlayError{"'" + folder_.events().string() + "' could not be written completely"};
        }
    }

    void carryOut(const Step& step)
    {
        if (const auto* const action = std::get_if<Action>(&step.content)) {
            audience_.willPerform(session_.seconds(), step, *action);
            tellFailure(step, action->perform(session_));
        } else {
            check(step, std::get<std::vector<Expectation>>(step.content));
        }
    }

    void tellFailure(const Step& step, const std::string& why)
    {
        if (!why.empty()) {
            const std::vector<Mismatch> all{impossibleStep(why, step.line)};
            result_.mismatches.push_back(all.front());
            audience_.checked(session_.seconds(), step, all);
        }
    }

    void check(const Step& step, const std::vector<Expectation>& expectations)
    {
        const Json state = stateOf(session_);
        std::vector<Mismatch> all;
        for (const Expectation& expectation : expectations) {
            const auto found = mismatches(expectation, state);
            result_.expectationsHeld += found.empty() ? 1U : 0U;
            all.insert(all.end(), found.begin(), found.end());
        }
        result_.mismatches.insert(result_.mismatches.end(), all.begin(), all.end());
        audience_.checked(session_.seconds(), step, all);
    }

    const Scenario& scenario_;
    Audience& audience_;
    PlayFolder folder_;
    const bool recordsSound_;
    MacSession session_;
    PlayResult result_;
    bool hasEnded_ = false;
};

} // namespace

bool leaveFromEarlierRun(MacSession& session, const Scenario& scenario)
{
    if (!scenario.settings.empty()) {
        SettingsStore store{session.mainActor(), session.mac().startProcess().defaults};
        store.setSettings(withFields(store.settings(), scenario.settings));
    }
    if (!scenario.mac.passcode) {
        return true;
    }
    const ports::Platform& platform = session.mac().startProcess();
    UnlockPasscodeStore store{platform.keychain, platform.cryptography, platform.random, platform.generalRandom};
    return storePasscode(store, *scenario.mac.passcode);
}

PlayResult play(const Scenario& scenario, const PlayOptions& options, Audience& audience)
{
    try {
        return Play{scenario, options, audience}.run();
    } catch (const std::invalid_argument& error) {
        // Invalid description, such as two audio devices with one identifier.
        throw PlayError{scenario.file + ": " + error.what()};
    }
}

} // namespace sentrel::simulation
