#include "selftest/SelfTest.hpp"
#include "simulation/page/ServeCommand.hpp"
#include "simulation/stage/ExitStatus.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/NearestWord.hpp"
#include "simulation/stage/PlayFolder.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/stage/ScenarioShelf.hpp"
#include "simulation/storm/StormCommand.hpp"
#include "simulation/story/PlayCommand.hpp"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#ifndef SENTREL_RESOURCES_DIR
#error "the build says where the localisation tables are"
#endif

namespace {

using namespace sentrel::simulation;

/// The parsed command line; texts are empty for omitted options.
struct Arguments {
    PlayCommand play;
    std::string playScenario;
    std::string playOut;
    std::string playHtml;
    std::vector<std::string> checked;
    std::string tested = "cafe-theft";
    ServeCommand serve;
    std::string serveScenario = "cafe-theft";
    std::string disk;
    std::string token;
    std::string language;
    StormCommand storm;
    std::string stormKeep;
};

/// The error for a token that is easy to guess, empty for a good one: only the token protects the page.
std::string refusalOfToken(const std::string& token)
{
    constexpr std::size_t shortestToken = 16;
    return token.size() < shortestToken ? "a token has at least 16 characters" : std::string{};
}

/// The error for an invalid seed, empty for a good one. CLI11 would take "-1" for the largest number.
std::string refusalOfSeed(const std::string& seed)
{
    return seed.starts_with('-') ? "a seed is a whole number, 0 or more" : std::string{};
}

CLI::App* addPlay(CLI::App& app, Arguments& arguments)
{
    CLI::App* const play = app.add_subcommand("play", "Plays a scenario in virtual time and tells what happens");
    play->add_option("scenario", arguments.playScenario, "The scenario: a YAML file, or a name that `list` shows")
        ->required();
    play->add_option("--out", arguments.playOut, "Keep the disk, the events and the sound in this folder");
    play->add_option("--html", arguments.playHtml, "Write the story as one web page into this file");
    play->add_flag("--json", arguments.play.isJson, "Print the outcome as one JSON object instead of the story");
    play->add_option("--seed", arguments.play.seed, "Seed of sensor noise and identifiers")
        ->check(refusalOfSeed)
        ->capture_default_str();
    return play;
}

CLI::App* addServe(CLI::App& app, Arguments& arguments)
{
    constexpr int highestPort = 65535;
    CLI::App* const serve =
        app.add_subcommand("serve", "Lets the MacBook live, in real time, on a page in the browser");
    serve->add_option("--scenario", arguments.serveScenario, "Whose MacBook it is; its steps are not played")
        ->capture_default_str();
    serve->add_option("--port", arguments.serve.port, "The port on this machine; 0 takes any that is free")
        ->check(CLI::Range(0, highestPort))
        ->capture_default_str();
    serve->add_option("--disk", arguments.disk, "Keep the MacBook's disk in this folder, and find it again there");
    serve->add_flag("--open", arguments.serve.opensBrowser, "Open the page in the browser");
    serve->add_option("--token", arguments.token, "The page's token, instead of a random one")->check(refusalOfToken);
    serve->add_option("--language", arguments.language, "Its user's language, such as de, fr_CA or zh-Hans");
    serve->add_option("--seed", arguments.serve.seed, "Seed of sensor noise and identifiers")
        ->check(refusalOfSeed)
        ->capture_default_str();
    return serve;
}

CLI::App* addStorm(CLI::App& app, Arguments& arguments)
{
    constexpr double leastHours = 0.1;
    constexpr double mostHours = 100'000'000.0;
    constexpr unsigned mostJobs = 256;
    CLI::App* const storm = app.add_subcommand(
        "storm", "Lets many MacBooks live through thefts and faults at every port, and checks what must always hold");
    storm->add_option("--hours", arguments.storm.hours, "Hours of the MacBooks together")
        ->check(CLI::Range(leastHours, mostHours))
        ->capture_default_str();
    storm->add_option("--world", arguments.storm.world, "Live this world of the storm alone, and save its whole play");
    storm->add_option("--seed", arguments.storm.seed, "Seed of the weather")
        ->check(refusalOfSeed)
        ->capture_default_str();
    storm->add_option("--jobs", arguments.storm.jobs, "Processes at a time; one for each core if left out")
        ->check(CLI::Range(1U, mostJobs));
    storm->add_option("--keep", arguments.stormKeep, "Save minimal scenarios of violations in this folder (out/storm)");
    storm->add_flag("--json", arguments.storm.isJson, "Print the summary as one JSON object");
    return storm;
}

/// The error for a first word that is not a command; none if it is one, or an option.
std::optional<std::string> refusalOfCommand(const CLI::App& app, std::string_view word)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(command->get_name());
        if (names.back() == word) {
            return std::nullopt;
        }
    }
    if (word.starts_with('-')) {
        return std::nullopt;
    }
    const std::vector<std::string_view> words{names.begin(), names.end()};
    return unknownWord("command", word, words) + " `sentrel-simulator --help` lists them.";
}

int serve(Arguments& arguments, const ScenarioShelf& shelf)
{
    const auto given = [](const std::string& text) { return text.empty() ? std::nullopt : std::optional{text}; };
    arguments.serve.resources = SENTREL_RESOURCES_DIR;
    arguments.serve.web = SENTREL_WEB_DIR;
    arguments.serve.scenario = shelf.find(arguments.serveScenario).string();
    arguments.serve.disk = given(arguments.disk);
    arguments.serve.token = given(arguments.token);
    arguments.serve.language = given(arguments.language);
    return run(arguments.serve, std::cout, std::cerr);
}

/// Prints the self-test's page of the scenario's MacBook.
int selfTest(const std::string& name, const ScenarioShelf& shelf)
{
    constexpr std::chrono::minutes longest{10}; // of virtual time, more than all limits together
    const PlayFolder folder{std::nullopt};
    MacSession session{readScenario(shelf.find(name)).mac, folder.path(), SENTREL_RESOURCES_DIR, 1};
    sentrel::selftest::SelfTest test{session.mac().startProcess(), {}};
    std::vector<sentrel::selftest::Finding> findings;
    session.mainActor().spawn(test.run([&](const auto& finding) { findings.push_back(finding); }));
    session.clock().advance(longest);
    std::cout << sentrel::selftest::heading();
    for (const auto& finding : findings) {
        std::cout << textOf(finding);
    }
    std::cout << sentrel::selftest::summary(findings);
    return hasFailed(findings) ? exitSomeFailed : exitAllHeld;
}

int play(Arguments& arguments, const ScenarioShelf& shelf)
{
    arguments.play.resources = SENTREL_RESOURCES_DIR;
    arguments.play.scenario = shelf.find(arguments.playScenario);
    if (!arguments.playOut.empty()) {
        arguments.play.out = arguments.playOut;
    }
    if (!arguments.playHtml.empty()) {
        arguments.play.html = arguments.playHtml;
        arguments.play.web = SENTREL_WEB_DIR "/story";
    }
    return run(arguments.play, std::cout, std::cerr);
}

int storm(Arguments& arguments)
{
    arguments.storm.resources = SENTREL_RESOURCES_DIR;
    arguments.storm.showsProgress = ::isatty(STDERR_FILENO) == 1;
    if (!arguments.stormKeep.empty()) {
        arguments.storm.keep = arguments.stormKeep;
    }
    return run(arguments.storm, std::cout, std::cerr);
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"Runs Sentrel on a simulated MacBook."};
    app.set_version_flag("--version", "Sentrel " SENTREL_VERSION);
    app.require_subcommand(1);

    Arguments arguments;
    const CLI::App* const playing = addPlay(app, arguments);
    const CLI::App* const listing = app.add_subcommand("list", "Lists the scenarios that come with the program");
    CLI::App* const checking = app.add_subcommand("check", "Reads scenarios without playing them; prints mistakes");
    checking->add_option("scenarios", arguments.checked, "YAML files, or names that `list` shows")->required();
    const CLI::App* const schema =
        app.add_subcommand("schema", "Prints the JSON Schema of scenarios, with which editors complete and check them");
    CLI::App* const testing =
        app.add_subcommand("selftest", "Prints what sentrel-selftest finds on a scenario's MacBook");
    testing->add_option("scenario", arguments.tested, "Whose MacBook it is")->capture_default_str();
    addServe(app, arguments);
    const CLI::App* const storming = addStorm(app, arguments);

    if (const auto refusal = argc > 1 ? refusalOfCommand(app, argv[1]) : std::nullopt) {
        std::cerr << "sentrel-simulator: " << *refusal << '\n';
        return exitUnreadable;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version are no errors; all other failures count as an unreadable command line.
        return app.exit(error) == 0 ? exitAllHeld : exitUnreadable;
    }
    const ScenarioShelf shelf{SENTREL_SCENARIOS_DIR};
    try {
        if (listing->parsed()) {
            return listScenarios(shelf, std::cout);
        }
        if (checking->parsed()) {
            return checkScenarios(shelf, arguments.checked, std::cout, std::cerr);
        }
        if (schema->parsed()) {
            std::cout << scenarioSchema().dump(2) << '\n';
            return exitAllHeld;
        }
        if (storming->parsed()) {
            return storm(arguments);
        }
        if (testing->parsed()) {
            return selfTest(arguments.tested, shelf);
        }
        return playing->parsed() ? play(arguments, shelf) : serve(arguments, shelf);
    } catch (const ScenarioError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "sentrel-simulator: " << error.what() << '\n';
    }
    return exitUnreadable;
}
