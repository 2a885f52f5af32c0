#include "simulation/story/PlayCommand.hpp"

#include "simulation/stage/Player.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/storm/Witness.hpp"
#include "simulation/story/Story.hpp"

#include <nlohmann/json.hpp>

#include <ostream>

namespace sentrel::simulation {

namespace {

/// Passes the play on to the story.
class StoryAudience final : public Audience {
public:
    StoryAudience(Story& story, const Scenario& scenario) : story_(story), scenario_(scenario) {}

    void begins() override { story_.open(scenario_); }

    void happened(const Event& event) override { story_.tell(event); }

    void willPerform(double at, const Step& step, const Action& action) override
    {
        remark(at, step);
        story_.perform(at, action);
    }

    void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) override
    {
        remark(at, step);
        if (!mismatches.empty()) {
            story_.differ(at, mismatches);
        }
    }

private:
    void remark(double at, const Step& step)
    {
        if (!step.note.empty()) {
            story_.remark(at, step.note);
        }
    }

    Story& story_;
    const Scenario& scenario_;
};

/// Ignores the play.
class NoAudience final : public Audience {
public:
    void happened(const Event& /*event*/) override {}
    void willPerform(double /*at*/, const Step& /*step*/, const Action& /*action*/) override {}
    void checked(double /*at*/, const Step& /*step*/, const std::vector<Mismatch>& /*mismatches*/) override {}
};

/// Lets a witness follow the play, too, if the scenario wants one.
class WatchedAudience final : public Audience {
public:
    WatchedAudience(Audience& audience, const Scenario& scenario) : audience_(audience), isWatched_(scenario.isWatched)
    {
    }

    void begins() override { audience_.begins(); }
    void enters(MacSession& session) override
    {
        if (isWatched_) {
            witness_.enters(session);
        }
    }
    [[nodiscard]] bool wantsEachInstant() const override { return isWatched_; }
    void leaves(MacSession& session) override { witness_.leaves(session); }
    void died(double at, const Raised& raised) override
    {
        audience_.died(at, raised);
        witness_.died(at, raised);
    }
    void settled(MacSession& session) override
    {
        if (isWatched_) {
            witness_.settled(session);
        }
    }
    void happened(const Event& event) override
    {
        audience_.happened(event);
        witness_.happened(event);
    }
    void willPerform(double at, const Step& step, const Action& action) override
    {
        audience_.willPerform(at, step, action);
        if (isWatched_) {
            witness_.willPerform(at, step, action);
        }
    }
    void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) override
    {
        audience_.checked(at, step, mismatches);
    }

    [[nodiscard]] const std::vector<Violation>& violations() const { return witness_.violations(); }

private:
    Audience& audience_;
    const bool isWatched_;
    Witness witness_;
};

/// An invariant that did not hold counts as a failed expectation.
PlayResult playWatched(const Scenario& scenario, const PlayOptions& options, Audience& audience)
{
    WatchedAudience watched{audience, scenario};
    PlayResult result = play(scenario, options, watched);
    for (const Violation& violation : watched.violations()) {
        result.mismatches.push_back(
            {.path = "the invariant \"" + violation.invariant + "\"",
             .expected = "kept",
             .actual = "violated at " + std::to_string(violation.at) + " s: " + violation.what});
    }
    return result;
}

struct Artefact {
    const char* key;
    const char* what;
    const char* name;
};

constexpr Artefact artefacts[] = {
    {"alarm", "the alarm as it was heard", "alarm.wav"},
    {"events", "everything that happened", "events.jsonl"},
    {"applicationSupport", "the alerts", "Application Support"},
    {"preferences", "the user defaults", "Preferences"},
    {"cloud", "the account in iCloud", "iCloud"},
};

std::vector<std::pair<Artefact, std::filesystem::path>> keptArtefacts(const PlayCommand& command)
{
    std::vector<std::pair<Artefact, std::filesystem::path>> kept;
    for (const Artefact& artefact : artefacts) {
        if (command.out && std::filesystem::exists(*command.out / artefact.name)) {
            kept.emplace_back(artefact, *command.out / artefact.name);
        }
    }
    return kept;
}

Json jsonOf(const Mismatch& mismatch, const Scenario& scenario)
{
    return {{"file", scenario.file},
            {"line", mismatch.line},
            {"path", mismatch.path},
            {"expected", mismatch.expected},
            {"actual", mismatch.actual}};
}

Json jsonOf(const PlayResult& result, const Scenario& scenario, const PlayCommand& command)
{
    Json mismatches = Json::array();
    for (const Mismatch& mismatch : result.mismatches) {
        mismatches.push_back(jsonOf(mismatch, scenario));
    }
    Json kept = Json::object();
    for (const auto& [artefact, path] : keptArtefacts(command)) {
        kept[artefact.key] = path.string();
    }
    return {{"scenario", scenario.file},           {"title", scenario.title},
            {"seconds", result.seconds},           {"held", result.expectationsHeld},
            {"mismatches", std::move(mismatches)}, {"artefacts", std::move(kept)}};
}

StorySummary summaryOf(const PlayResult& result, const Scenario& scenario, const PlayCommand& command)
{
    StorySummary summary{.endedAt = result.seconds,
                         .file = scenario.file,
                         .held = result.expectationsHeld,
                         .mismatches = result.mismatches,
                         .artefacts = {}};
    for (const auto& [artefact, path] : keptArtefacts(command)) {
        summary.artefacts.push_back({artefact.what, path.string()});
    }
    return summary;
}

PlayResult playAsStory(const Scenario& scenario, const PlayOptions& options, const PlayCommand& command,
                       std::ostream& out)
{
    Story story{out, StoryStyle::forStandardOutput()};
    StoryAudience audience{story, scenario};
    PlayResult result = playWatched(scenario, options, audience);
    story.finish(summaryOf(result, scenario, command));
    return result;
}

PlayResult playAsJson(const Scenario& scenario, const PlayOptions& options, const PlayCommand& command,
                      std::ostream& out)
{
    NoAudience audience;
    PlayResult result = playWatched(scenario, options, audience);
    out << encodeJson(jsonOf(result, scenario, command)) << '\n';
    return result;
}

} // namespace

int run(const PlayCommand& command, std::ostream& out, std::ostream& err)
{
    try {
        const Scenario scenario = readScenario(command.scenario);
        const PlayOptions options{.out = command.out, .resources = command.resources, .seed = command.seed};
        const PlayResult result =
            command.isJson ? playAsJson(scenario, options, command, out) : playAsStory(scenario, options, command, out);
        return result.mismatches.empty() ? exitAllHeld : exitSomeFailed;
    } catch (const ScenarioError& error) {
        err << error.what() << '\n';
    } catch (const PlayError& error) {
        err << error.what() << '\n';
    }
    return exitUnreadable;
}

} // namespace sentrel::simulation
