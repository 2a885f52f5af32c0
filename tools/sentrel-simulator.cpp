#include "simulator/PlayCommand.hpp"
#include "simulator/serve/ServeCommand.hpp"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

#ifndef SENTREL_RESOURCES_DIR
#error "the build says where the localisation tables are"
#endif

int main(int argc, char** argv)
{
    using namespace sentrel::simulator;

    CLI::App app{"Runs Sentrel on a simulated MacBook."};
    app.require_subcommand(1);

    PlayCommand command;
    command.resources = SENTREL_RESOURCES_DIR;
    std::string out;
    CLI::App* const play = app.add_subcommand("play", "Plays a scenario in virtual time and tells what happens");
    play->add_option("scenario", command.scenario, "The scenario, a YAML file")->required();
    play->add_option("--out", out, "Keep the disk, the events and the sound in this folder");
    play->add_flag("--json", command.isJson, "Print the outcome as one JSON object instead of the story");
    play->add_option("--seed", command.seed, "Seed of sensor noise and identifiers")->capture_default_str();

    ServeCommand serving;
    serving.resources = SENTREL_RESOURCES_DIR;
    serving.web = SENTREL_WEB_DIR;
    serving.scenario = SENTREL_SCENARIOS_DIR "/cafe-theft.yaml";
    std::string disk;
    std::string token;
    std::string language;
    CLI::App* const serve =
        app.add_subcommand("serve", "Lets the MacBook live, in real time, on a page in the browser");
    serve->add_option("--scenario", serving.scenario, "Whose MacBook it is; its steps are not played");
    serve->add_option("--port", serving.port, "The port on this machine; 0 takes any that is free")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    serve->add_option("--disk", disk, "Keep the MacBook's disk in this folder, and find it again there");
    serve->add_option("--token", token, "The page's token, instead of a random one");
    serve->add_option("--language", language, "Its user's language, such as de, fr_CA or zh-Hans");
    serve->add_option("--seed", serving.seed, "Seed of sensor noise and identifiers")->capture_default_str();

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help is no error; anything else can't be read, as a scenario that can't.
        return app.exit(error) == 0 ? 0 : exitUnreadable;
    }
    try {
        if (!out.empty()) {
            command.out = out;
        }
        if (serve->parsed()) {
            if (!disk.empty()) {
                serving.disk = disk;
            }
            if (!token.empty()) {
                serving.token = token;
            }
            if (!language.empty()) {
                serving.language = language;
            }
            return run(serving, std::cout, std::cerr);
        }
        return run(command, std::cout, std::cerr);
    } catch (const std::exception& error) {
        std::cerr << "sentrel-simulator: " << error.what() << '\n';
        return exitUnreadable;
    }
}
