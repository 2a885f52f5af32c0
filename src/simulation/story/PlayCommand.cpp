#include "simulation/story/PlayCommand.hpp"

#include "simulation/stage/Player.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/storm/Witness.hpp"
#include "simulation/story/ProgressLine.hpp"
#include "simulation/story/Story.hpp"
#include "simulation/story/StoryAudience.hpp"
#include "simulation/story/html/HtmlStory.hpp"
#include "simulation/story/html/StoryRecorder.hpp"

#include <nlohmann/json.hpp>

#include <fstream>
#include <ostream>
#include <unistd.h>

namespace sentrel::simulation {

namespace {

/// An invariant that did not hold counts as a failed expectation.
void addViolations(const Witness& witness, PlayResult& result)
{
    for (const Violation& violation : witness.violations()) {
        result.mismatches.push_back(
            {.path = "the invariant \"" + violation.invariant + "\"",
             .expected = "kept",
             .actual = "violated at " + std::to_string(violation.at) + " s: " + violation.what});
    }
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
    if (command.html) {
        kept["html"] = command.html->string();
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
    if (command.html) {
        summary.artefacts.push_back({"the story as a page", command.html->string()});
    }
    return summary;
}

void writePage(const StoryRecord& record, const PlayCommand& command, const HtmlLooks& looks)
{
    std::ofstream file{*command.html, std::ios::binary | std::ios::trunc};
    file << htmlStory(record, looks);
    file.close();
    if (!file) {
        throw PlayError{"can't write '" + command.html->string() + "'"};
    }
}

/// One play and its audiences.
class OnePlay {
public:
    OnePlay(const Scenario& scenario, const PlayCommand& command, std::ostream& err)
        : scenario_(scenario), command_(command)
    {
        if (ProgressLine::isWatched()) {
            const double seconds = scenario.steps.empty() ? 0.0 : toSeconds(scenario.steps.back().at);
            audiences_.add(progress_.emplace(err, seconds, !command.isJson && isatty(STDOUT_FILENO) != 0));
        }
        if (scenario.isWatched) {
            audiences_.add(witness_.emplace());
        }
        if (command.html) {
            looks_ = HtmlLooks::readFrom(command.web);
            audiences_.add(recorder_.emplace(scenario));
        }
    }

    PlayResult playAsStory(std::ostream& out)
    {
        Story story{out, StoryStyle::forStandardOutput()};
        StoryAudience audience{story, scenario_};
        audiences_.add(audience);
        PlayResult result = playAll();
        story.finish(summaryOf(result, scenario_, command_));
        return result;
    }

    PlayResult playAsJson(std::ostream& out)
    {
        PlayResult result = playAll();
        out << encodeJson(jsonOf(result, scenario_, command_)) << '\n';
        return result;
    }

private:
    PlayResult playAll()
    {
        const PlayOptions options{.out = command_.out,
                                  .resources = command_.resources,
                                  .seed = command_.seed,
                                  .recordsSound = recorder_.has_value()};
        PlayResult result = play(scenario_, options, audiences_);
        progress_.reset();
        if (witness_) {
            addViolations(*witness_, result);
        }
        if (recorder_) {
            writePage(recorder_->finish(summaryOf(result, scenario_, command_)), command_, looks_);
        }
        return result;
    }

    const Scenario& scenario_;
    const PlayCommand& command_;
    Audiences audiences_;
    std::optional<ProgressLine> progress_;
    std::optional<Witness> witness_;
    std::optional<StoryRecorder> recorder_;
    HtmlLooks looks_;
};

} // namespace

int run(const PlayCommand& command, std::ostream& out, std::ostream& err)
{
    try {
        const Scenario scenario = readScenario(command.scenario);
        OnePlay onePlay{scenario, command, err};
        const PlayResult result = command.isJson ? onePlay.playAsJson(out) : onePlay.playAsStory(out);
        return result.mismatches.empty() ? exitAllHeld : exitSomeFailed;
    } catch (const ScenarioError& error) {
        err << error.what() << '\n';
    } catch (const PlayError& error) {
        err << error.what() << '\n';
    }
    return exitUnreadable;
}

} // namespace sentrel::simulation
