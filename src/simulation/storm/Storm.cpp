#include "simulation/storm/Storm.hpp"

#include "simulation/storm/Rehearsal.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace sentrel::simulation {

namespace {

volatile std::sig_atomic_t wasInterrupted = 0;

/// Notes the signals that end a storm early, as long as it lives.
class InterruptScope {
public:
    InterruptScope()
    {
        wasInterrupted = 0;
        struct sigaction action{};
        action.sa_handler = [](int) { wasInterrupted = 1; };
        ::sigaction(SIGINT, &action, &earlier_[0]);
        ::sigaction(SIGTERM, &action, &earlier_[1]);
    }
    ~InterruptScope()
    {
        ::sigaction(SIGINT, &earlier_[0], nullptr);
        ::sigaction(SIGTERM, &earlier_[1], nullptr);
    }
    InterruptScope(const InterruptScope&) = delete;

private:
    std::array<struct sigaction, 2> earlier_{};
};

/// Lengths of worlds, in hours: short ones for many events, long ones for what wears out.
double hoursOfWorld(std::uint64_t seed, std::size_t world)
{
    constexpr double shortest = 2.0;
    constexpr std::array<double, 6> factors{1.0, 4.0, 12.0, 48.0, 168.0, 336.0};
    return shortest * factors[(world * 5 + seed) % factors.size()];
}

std::uint64_t seedOf(std::uint64_t seed, std::size_t world)
{
    constexpr std::uint64_t most = 1'000'000;
    return seed * most + world;
}

} // namespace

void add(const WorldReport& report, std::size_t world, StormReport& sum)
{
    ++sum.worlds;
    const Experience& one = report.experience;
    Experience& all = sum.experience;
    all.hours += one.hours;
    all.armedHours += one.armedHours;
    all.triggers += one.triggers;
    all.alerts += one.alerts;
    all.crashes += one.crashes;
    for (const auto& [fault, count] : one.faults) {
        all.faults[fault] += count;
    }
    for (const auto& [call, count] : one.calls) {
        all.calls[call] += count;
    }
    all.pairs.insert(one.pairs.begin(), one.pairs.end());
    for (const Violation& violation : report.violations) {
        sum.violations.push_back({world, violation});
    }
}

/// Processes that live worlds and report each as a line of JSON. One that dies is replaced.
class Storm::Workers {
public:
    Workers(const Storm& storm, const Progress& progress) : storm_(storm), progress_(progress) {}
    ~Workers()
    {
        for (const Worker& worker : workers_) {
            ::kill(worker.process, SIGKILL);
            ::close(worker.reports);
            ::waitpid(worker.process, nullptr, 0);
        }
    }
    Workers(const Workers&) = delete;

    std::map<std::size_t, WorldReport> run()
    {
        const std::size_t jobs = std::min<std::size_t>(storm_.options_.jobs, storm_.worlds());
        for (std::size_t first = 0; first < jobs; ++first) {
            start(first, jobs);
        }
        while (!workers_.empty() && wasInterrupted == 0) {
            listen(jobs);
        }
        return std::move(reports_);
    }

private:
    struct Worker {
        pid_t process = 0;
        int reports = -1; ///< the reading end of its pipe
        std::size_t next = 0;
        std::string text = {};
    };

    void start(std::size_t first, std::size_t jobs)
    {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) {
            throw PlayError{"no pipe can be made"};
        }
        const pid_t process = ::fork();
        if (process < 0) {
            throw PlayError{"no process can be started"};
        }
        if (process == 0) {
            ::close(ends[0]);
            try {
                work(first, jobs, ends[1]);
            } catch (...) {
                ::_exit(1);
            }
            ::_exit(0);
        }
        ::close(ends[1]);
        workers_.push_back({process, ends[0], first});
    }

    void work(std::size_t first, std::size_t jobs, int reports) const
    {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        for (std::size_t world = first; world < storm_.worlds(); world += jobs) {
            limitTime();
            const std::string line = encodeJson(jsonOf(live(storm_.plan(world), storm_.options_.resources))) + '\n';
            for (std::string_view rest = line; !rest.empty();) {
                const auto written = ::write(reports, rest.data(), rest.size());
                if (written <= 0) {
                    return;
                }
                rest.remove_prefix(static_cast<std::size_t>(written));
            }
        }
    }

    void listen(std::size_t jobs)
    {
        std::vector<pollfd> waiting;
        for (const Worker& worker : workers_) {
            waiting.push_back({worker.reports, POLLIN, 0});
        }
        constexpr int patience = 1000; // milliseconds
        if (::poll(waiting.data(), waiting.size(), patience) <= 0) {
            return;
        }
        for (std::size_t i = waiting.size(); i-- > 0;) {
            if (waiting[i].revents != 0 && !hear(workers_[i], jobs)) {
                replace(i, jobs);
            }
        }
    }

    /// False when the process has ended.
    bool hear(Worker& worker, std::size_t jobs)
    {
        std::array<char, 65536> part{};
        const auto length = ::read(worker.reports, part.data(), part.size());
        if (length < 0 && errno == EINTR) {
            return true;
        }
        if (length <= 0) {
            return false;
        }
        worker.text.append(part.data(), static_cast<std::size_t>(length));
        for (auto end = worker.text.find('\n'); end != std::string::npos; end = worker.text.find('\n')) {
            note(worker.next, reportOf(Json::parse(worker.text.substr(0, end))));
            worker.next += jobs;
            worker.text.erase(0, end + 1);
        }
        return true;
    }

    void note(std::size_t world, WorldReport report)
    {
        add(report, world, soFar_);
        reports_[world] = std::move(report);
        progress_(soFar_);
    }

    void replace(std::size_t place, std::size_t jobs)
    {
        Worker ended = std::move(workers_[place]);
        workers_.erase(workers_.begin() + static_cast<std::ptrdiff_t>(place));
        int status = 0;
        ::waitpid(ended.process, &status, 0);
        ::close(ended.reports);
        if (ended.next >= storm_.worlds() || wasInterrupted != 0) {
            return;
        }
        auto end = violationOfEnd(status);
        note(ended.next, {{}, {end ? *std::move(end) : Violation{0.0, "the program lives", "its process ended"}}});
        if (ended.next + jobs < storm_.worlds()) {
            start(ended.next + jobs, jobs);
        }
    }

    const Storm& storm_;
    const Progress& progress_;
    std::vector<Worker> workers_;
    std::map<std::size_t, WorldReport> reports_;
    StormReport soFar_;
};

Storm::Storm(StormOptions options)
    : options_(std::move(options)), ports_(faultyPorts(options_.resources)), points_(rehearse(options_.resources))
{
    double hours = 0.0;
    while (hours < options_.hours) {
        hours_.push_back(std::min(hoursOfWorld(options_.seed, hours_.size()), options_.hours - hours));
        hours += hours_.back();
    }
}

Plan Storm::plan(std::size_t world) const
{
    return weather(seedOf(options_.seed, world), hours_[world], ports_, points_);
}

StormReport Storm::run(const Progress& progress)
{
    const InterruptScope scope;
    // Summed up in the order of the worlds, whoever was first.
    StormReport sum;
    for (const auto& [world, report] : Workers{*this, progress}.run()) {
        add(report, world, sum);
    }
    sum.isInterrupted = wasInterrupted != 0;
    return sum;
}

} // namespace sentrel::simulation
