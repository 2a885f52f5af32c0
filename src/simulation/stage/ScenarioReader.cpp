#include "simulation/stage/ScenarioReader.hpp"

#include "simulation/stage/ActionReader.hpp"
#include "simulation/stage/ExpectationReader.hpp"
#include "simulation/stage/MacReader.hpp"
#include "simulation/stage/SettingsReader.hpp"
#include "simulation/stage/TextFile.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::size_t largestScenario = 1024UL * 1024;

/// A step being read; its parts are checked at the end.
struct StepDraft {
    StepTime at;
    int contents = 0;
    Step step;
};

constexpr std::array<FieldRow<StepDraft>, 4> stepFields{{
    {"at", [](auto& draft, auto& value, auto&) { draft.at = readStepTime(value); }, true},
    {"do",
     [](auto& draft, auto& value, auto& context) {
         ++draft.contents;
         draft.step.content = readAction(value, context);
     }},
    {"expect",
     [](auto& draft, auto& value, auto&) {
         ++draft.contents;
         draft.step.content = readExpectations(value);
     }},
    {"note", [](auto& draft, auto& value, auto&) { draft.step.note = readText(value, "'note'"); }},
}};

Step readStep(const YamlValue& value, Duration previous, const ReadContext& context)
{
    StepDraft draft;
    draft.step.line = value.line;
    readFields(value, "a step", stepFields, draft, context);
    if (draft.contents != 1) {
        throw SourceFault(value.line, draft.contents == 0 ? "a step needs 'do' or 'expect'"
                                                          : "a step has 'do' or 'expect', not both: make two steps");
    }
    draft.step.at = draft.at.isRelative ? previous + draft.at.span : draft.at.span;
    if (draft.step.at < previous) {
        throw SourceFault(value.line, "the time goes back: the step before is at a later time");
    }
    if (draft.step.at > longestScenario) {
        throw SourceFault(value.line, "too late: a scenario ends after 366 days");
    }
    return std::move(draft.step);
}

void readSteps(Scenario& scenario, const YamlValue& value, const ReadContext& context)
{
    requireList(value, "'steps'");
    Duration previous{};
    for (const YamlValue& item : value.items) {
        scenario.steps.push_back(readStep(item, previous, context));
        previous = scenario.steps.back().at;
    }
    if (scenario.steps.empty()) {
        throw SourceFault(value.line, "'steps' is empty");
    }
}

constexpr std::array<FieldRow<Scenario>, 5> scenarioFields{{
    {"title", [](auto& scenario, auto& value, auto&) { scenario.title = readText(value, "'title'"); }},
    {"mac", [](auto& scenario, auto& value, auto& context) { scenario.mac = readMac(value, context); }},
    {"settings", [](auto& scenario, auto& value, auto&) { scenario.settings = readSettings(value); }},
    {"watched", [](auto& scenario, auto& value, auto&) { scenario.isWatched = readFlag(value, "'watched'"); }},
    {"steps", readSteps, true},
}};

} // namespace

Scenario parseScenario(const std::string& text, const std::filesystem::path& file)
{
    try {
        Scenario scenario;
        scenario.file = file.string();
        scenario.title = file.stem().string();
        const ReadContext context{file.parent_path()};
        readFields(parseYaml(text), "a scenario", scenarioFields, scenario, context);
        return scenario;
    } catch (const SourceFault& fault) {
        throw ScenarioError(file.string(), fault.line(), fault.what());
    }
}

Scenario readScenario(const std::filesystem::path& file)
{
    return parseScenario(readTextFile(file, largestScenario), file);
}

} // namespace sentrel::simulation
