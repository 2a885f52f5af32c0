#include "simulation/storm/World.hpp"

#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/PlayFolder.hpp"
#include "simulation/stage/ScenarioReader.hpp"

#include <nlohmann/json.hpp>

#include <csignal>
#include <exception>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace sentrel::simulation {

namespace {

constexpr unsigned longestWorld = 600; // seconds of the real clock

void writeAll(int file, std::string_view text)
{
    while (!text.empty()) {
        const auto written = ::write(file, text.data(), text.size());
        if (written <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::string readAll(int file)
{
    std::string text;
    std::array<char, 4096> part{};
    for (;;) {
        const auto length = ::read(file, part.data(), part.size());
        if (length <= 0) {
            return text;
        }
        text.append(part.data(), static_cast<std::size_t>(length));
    }
}

} // namespace

void limitTime()
{
    ::alarm(longestWorld);
}

WorldReport live(const Plan& plan, const std::filesystem::path& resources)
{
    Witness witness;
    WorldReport report;
    try {
        const Scenario scenario = parseScenario(documentOf(plan), plan.title + ".yaml");
        const auto result = play(scenario, {.out = std::nullopt, .resources = resources}, witness);
        static_cast<void>(result);
    } catch (const std::exception& error) {
        report.violations.push_back({0.0, "the play goes on", error.what()});
    } catch (const Raised& raised) {
        report.violations.push_back({0.0, "the play goes on", raised.port + " " + raised.operation});
    }
    report.experience = witness.experience();
    report.violations.insert(report.violations.begin(), witness.violations().begin(), witness.violations().end());
    return report;
}

WorldReport liveApart(const Plan& plan, const std::filesystem::path& resources)
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw PlayError{"no pipe can be made"};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        limitTime();
        try {
            writeAll(ends[1], encodeJson(jsonOf(live(plan, resources))));
        } catch (...) {
            ::_exit(1);
        }
        ::_exit(0);
    }
    ::close(ends[1]);
    const std::string answer = child > 0 ? readAll(ends[0]) : std::string{};
    ::close(ends[0]);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) {
        throw PlayError{"no process can be started"};
    }
    if (auto end = violationOfEnd(status)) {
        return {{}, {*std::move(end)}};
    }
    return reportOf(Json::parse(answer));
}

std::vector<FaultyPort> faultyPorts(const std::filesystem::path& resources)
{
    const PlayFolder folder{std::nullopt};
    MacSession session{{}, folder.path(), resources, 1};
    std::vector<FaultyPort> ports;
    for (const auto& [name, switches] : session.mac().faults()) {
        ports.push_back({name, switches->names()});
    }
    return ports;
}

std::optional<Violation> violationOfEnd(int status)
{
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        return std::nullopt;
    }
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) {
        return Violation{0.0, "the world goes on", "its process took too long"};
    }
    const std::string how = WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                                                : "status " + std::to_string(WEXITSTATUS(status));
    return Violation{0.0, "the program lives", "its process ended with " + how};
}

Json jsonOf(const WorldReport& report)
{
    const Experience& experience = report.experience;
    Json violations = Json::array();
    for (const Violation& violation : report.violations) {
        violations.push_back({{"at", violation.at}, {"invariant", violation.invariant}, {"what", violation.what}});
    }
    return {
        {"hours", experience.hours},   {"armedHours", experience.armedHours}, {"triggers", experience.triggers},
        {"alerts", experience.alerts}, {"crashes", experience.crashes},       {"faults", experience.faults},
        {"calls", experience.calls},   {"pairs", experience.pairs},           {"violations", std::move(violations)}};
}

WorldReport reportOf(const Json& json)
{
    WorldReport report;
    Experience& experience = report.experience;
    json.at("hours").get_to(experience.hours);
    json.at("armedHours").get_to(experience.armedHours);
    json.at("triggers").get_to(experience.triggers);
    json.at("alerts").get_to(experience.alerts);
    json.at("crashes").get_to(experience.crashes);
    json.at("faults").get_to(experience.faults);
    json.at("calls").get_to(experience.calls);
    json.at("pairs").get_to(experience.pairs);
    for (const Json& violation : json.at("violations")) {
        report.violations.push_back({violation.at("at").get<double>(), violation.at("invariant").get<std::string>(),
                                     violation.at("what").get<std::string>()});
    }
    return report;
}

} // namespace sentrel::simulation
