#include "simulation/stage/ScenarioReader.hpp"

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

/// A word, or a map of one word to its value.
Json actionSchema()
{
    Json words{{"enum", Json::array()}};
    Json maps{{"type", "object"},
              {"properties", Json::object()},
              {"additionalProperties", false},
              {"minProperties", 1},
              {"maxProperties", 1}};
    for (const ActionRow& row : actionRows()) {
        if (row.example.empty()) {
            words["enum"].push_back(row.name);
            continue;
        }
        Json& schema = maps["properties"][std::string{row.name}] = row.schema;
        schema["description"] = std::string{row.meaning} + ", as in " + std::string{row.example};
    }
    return {{"anyOf", {std::move(words), std::move(maps)}}};
}

const Fields<StepDraft>& stepFields()
{
    static const Fields<StepDraft> fields{
        required(Field<StepDraft>{"at",
                                  [](auto& draft, auto& value, auto&) { draft.at = readStepTime(value); },
                                  {{"type", "string"},
                                   {"pattern", "^[+]?[0-9.]+(ms|s|m|h)$"},
                                   {"description", "time since the launch, or with + since the step before"}}}),
        {"do",
         [](auto& draft, auto& value, auto& context) {
             ++draft.contents;
             draft.step.content = readAction(value, context);
         },
         actionSchema()},
        {"expect",
         [read = expectationsType().read](auto& draft, auto& value, auto& context) {
             ++draft.contents;
             draft.step.content = read(value, "'expect'", context);
         },
         expectationsType().schema},
        {"note", [](auto& draft, auto& value, auto&) { draft.step.note = readText(value, "'note'"); },
         type::about("told first by the story", type::text()).schema},
    };
    return fields;
}

Step readStep(const YamlValue& value, Duration previous, const ReadContext& context)
{
    StepDraft draft;
    draft.step.line = value.line;
    readFields(value, "a step", stepFields(), draft, context);
    if (draft.contents != 1) {
        throw SourceFault(value.line, draft.contents == 0 ? "a step needs 'do' or 'expect'"
                                                          : "a step has 'do' or 'expect', not both: make two steps");
    }
    draft.step.at = draft.at.isRelative ? previous + draft.at.span : draft.at.span;
    if (draft.step.at < previous) {
        throw SourceFault(value.line, "the time is before that of the previous step");
    }
    if (draft.step.at > longestScenario) {
        throw SourceFault(value.line, "the time is too late: a scenario ends after 366 days");
    }
    return std::move(draft.step);
}

ValueType<std::vector<Step>> stepsType()
{
    Json schema{{"type", "array"}, {"items", schemaOf(stepFields())}, {"minItems", 1}};
    return {[](auto& value, auto what, auto& context) {
                requireList(value, what);
                Duration previous{};
                std::vector<Step> steps;
                for (const YamlValue& item : value.items) {
                    steps.push_back(readStep(item, previous, context));
                    previous = steps.back().at;
                }
                if (steps.empty()) {
                    throw SourceFault(value.line, "'steps' is empty");
                }
                return steps;
            },
            std::move(schema)};
}

const Fields<Scenario>& scenarioFields()
{
    static const Fields<Scenario> fields{
        field("title", &Scenario::title, type::text()),          field("mac", &Scenario::mac, macType()),
        field("settings", &Scenario::settings, settingsType()),  field("watched", &Scenario::isWatched, type::flag()),
        required(field("steps", &Scenario::steps, stepsType())),
    };
    return fields;
}

} // namespace

Scenario parseScenario(const std::string& text, const std::filesystem::path& file)
{
    try {
        Scenario scenario;
        scenario.file = file.string();
        scenario.title = file.stem().string();
        const ReadContext context{file.parent_path()};
        readFields(parseYaml(text), "a scenario", scenarioFields(), scenario, context);
        return scenario;
    } catch (const SourceFault& fault) {
        throw ScenarioError(file.string(), fault.line(), fault.what());
    }
}

Json scenarioSchema()
{
    Json schema{{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                {"title", "A scenario of the simulated MacBook"}};
    schema.update(schemaOf(scenarioFields()));
    return schema;
}

Scenario readScenario(const std::filesystem::path& file)
{
    return parseScenario(readTextFile(file, largestScenario), file);
}

} // namespace sentrel::simulation
