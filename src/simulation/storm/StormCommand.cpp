#include "simulation/storm/StormCommand.hpp"

#include "simulation/storm/Shrink.hpp"
#include "simulation/storm/Storm.hpp"
#include "simulation/storm/StormSummary.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace sentrel::simulation {

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

/// Minimal plays that are made: of the first violation of each of so many invariants.
constexpr std::size_t mostPlays = 5;

/// A folder for the worlds' disks, in memory where the machine has such a place; removed with what is left in it.
class WorldFolder {
public:
    WorldFolder()
    {
        const fs::path memory = "/dev/shm";
        std::error_code error;
        const bool hasMemory = fs::is_directory(memory, error) && ::access(memory.c_str(), W_OK) == 0;
        std::string name = ((hasMemory ? memory : fs::temp_directory_path()) / "sentrel-storm-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw PlayError{"can't make a folder in " + fs::path{name}.parent_path().string()};
        }
        path_ = name;
        ::setenv("TMPDIR", name.c_str(), 1);
    }
    ~WorldFolder()
    {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    WorldFolder(const WorldFolder&) = delete;

private:
    fs::path path_;
};

/// Seconds of processor time of this process and its children.
double processorSeconds()
{
    double seconds = 0.0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        ::getrusage(who, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime}) {
            seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        }
    }
    return seconds;
}

SavedViolation save(const Storm& storm, const StormViolation& found, const StormCommand& command)
{
    Plan plan = storm.plan(found.world);
    const auto stillFails = [&](const Plan& candidate) {
        const auto violations = liveApart(candidate, command.resources).violations;
        return !violations.empty() && violations.front().invariant == found.violation.invariant;
    };
    // The play lasts until the violation, and no longer.
    if (found.violation.at > 0.0) {
        const auto end = static_cast<std::int64_t>(found.violation.at * 1000.0) + 1;
        std::erase_if(plan.steps, [end](const PlannedStep& step) { return step.at > end; });
        plan.steps.push_back({end, "{fault: none}"});
    }
    if (stillFails(plan)) {
        plan = shrunk(std::move(plan), stillFails);
    }
    plan.title = found.violation.invariant + ": " + plan.title;
    plan.title = "\"" + plan.title + "\"";
    std::string name = found.violation.invariant;
    std::ranges::replace(name, ' ', '-');
    const fs::path file = command.keep / (name + ".yaml");
    fs::create_directories(command.keep);
    std::ofstream{file} << documentOf(plan);
    return {found, file.string(), plan.steps.size()};
}

StormReport runOne(const Storm& storm, std::size_t world, const StormCommand& command)
{
    if (world >= storm.worlds()) {
        throw PlayError{"the storm has " + std::to_string(storm.worlds()) + " worlds; the first is 0"};
    }
    const Plan plan = storm.plan(world);
    fs::create_directories(command.keep);
    std::ofstream{command.keep / ("world-" + std::to_string(world) + ".yaml")} << documentOf(plan);
    StormReport report;
    add(liveApart(plan, command.resources), world, report);
    return report;
}

std::vector<SavedViolation> saveAll(const Storm& storm, const StormReport& report, const StormCommand& command)
{
    std::vector<SavedViolation> saved;
    std::set<std::string> seen;
    for (const StormViolation& found : report.violations) {
        if (command.keep != "none" && saved.size() < mostPlays && seen.insert(found.violation.invariant).second) {
            saved.push_back(save(storm, found, command));
        }
    }
    return saved;
}

int unleash(const StormCommand& command, std::ostream& out, std::ostream& err)
{
    const WorldFolder folder;
    const unsigned cores = std::max(std::thread::hardware_concurrency(), 1U);
    Storm storm{{command.hours, command.seed, command.jobs > 0 ? command.jobs : cores, command.resources}};
    const auto progress = [&](const StormReport& soFar) {
        if (command.showsProgress) {
            err << "\r\033[K" << soFar.worlds << " of " << storm.worlds() << " worlds, "
                << static_cast<std::int64_t>(soFar.experience.hours) << " hours, " << soFar.violations.size()
                << " violations" << std::flush;
        }
    };
    const auto start = std::chrono::steady_clock::now();
    const double processorStart = processorSeconds();
    const StormReport report = command.world ? runOne(storm, *command.world, command) : storm.run(progress);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    const double processor = processorSeconds() - processorStart;
    if (command.showsProgress) {
        err << "\r\033[K" << std::flush;
    }
    const auto saved = report.isInterrupted ? std::vector<SavedViolation>{} : saveAll(storm, report, command);
    const Unreached unreached = unreachedBy(report.experience, storm.ports());
    if (command.isJson) {
        out << encodeJson(jsonOf(report, unreached, saved)) << '\n';
    } else {
        print(report, unreached, saved, out);
        constexpr double secondsOfHour = 3600.0;
        std::array<char, 160> speed{};
        std::snprintf(speed.data(), speed.size(),
                      "%.1f s, %.1f s of processor time: %.1f hours a core-second, %.0f times real time\n",
                      took.count(), processor, report.experience.hours / processor,
                      report.experience.hours * secondsOfHour / processor);
        out << speed.data();
    }
    return report.violations.empty() ? exitAllHeld : exitSomeFailed;
}

} // namespace

int run(const StormCommand& command, std::ostream& out, std::ostream& err)
{
    try {
        return unleash(command, out, err);
    } catch (const PlayError& error) {
        err << error.what() << '\n';
    } catch (const fs::filesystem_error& error) {
        err << error.what() << '\n';
    }
    return exitUnreadable;
}

} // namespace sentrel::simulation
