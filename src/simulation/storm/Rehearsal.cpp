#include "simulation/storm/Rehearsal.hpp"

#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/Player.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/storm/Occasion.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace sentrel::simulation {

namespace {

using Place = PlannedFaults::Place;
using Counts = std::map<Place, std::uint64_t>;

constexpr std::string_view marker = "{fault: none}";

/// The Mac on which the occasions are rehearsed: with everything that a Mac may have.
Plan rehearsalPlan()
{
    Plan plan{.title = "Rehearsal",
              .mac = {{"localizedName", "Maya's MacBook"},
                      {"icloud", "maya"},
                      {"camera", "{devices: built-in, share: 16}"},
                      {"login", "cancel"},
                      {"passcode", "\"2468\""},
                      {"music", "playing"},
                      {"automationConsent", "granted"},
                      {"audio", "[{id: 73, name: MacBook Pro Speakers, uid: BuiltInSpeakerDevice, transport: built-in, "
                                "volume: 0.4}, {id: 91, name: Headphones, uid: usb-91, transport: usb, volume: 0.7}]"},
                      {"defaultOutput", "91"}},
              .settings = {{"motionSensitivity", "0.55"}, {"capturePhoto", "false"}},
              .steps = {}};
    std::int64_t now = 2000;
    const auto add = [&](const std::vector<PlannedStep>& steps) {
        for (const PlannedStep& step : steps) {
            now += step.at;
            plan.steps.push_back({now, step.action});
        }
    };
    for (const Occasion& occasion : occasions()) {
        add({{1000, "arm"}, {4000, "plug-in"}});
        add(occasion.setup);
        add({{0, std::string{marker}}});
        add(occasion.acts);
        add({{0, std::string{marker}}});
        add(occasion.after);
        add({{1000, "stop-alarm"}, {0, "plug-in"}, {0, "open-lid"}, {0, "{login: cancel}"}});
    }
    return plan;
}

/// Counts the calls of each occasion.
class Rehearsal final : public Audience {
public:
    void begins(MacSession& session) override
    {
        session.plannedFaults().countCalls();
        session_ = &session;
    }
    void happened(const Event& /*event*/) override {}
    void willPerform(double /*at*/, const Step& /*step*/, const Action& action) override
    {
        if (action.name() != "fault") {
            return;
        }
        Counts counts = session_->plannedFaults().counted();
        isInOccasion_ = !isInOccasion_;
        if (isInOccasion_) {
            before_ = std::move(counts);
            return;
        }
        for (auto& [place, count] : counts) {
            const auto earlier = before_.find(place);
            count -= earlier == before_.end() ? 0 : earlier->second;
        }
        std::erase_if(counts, [](const auto& entry) { return entry.second == 0; });
        calls_.push_back(std::move(counts));
    }
    void checked(double /*at*/, const Step& /*step*/, const std::vector<Mismatch>& /*mismatches*/) override {}

    /// By occasion.
    [[nodiscard]] const std::vector<Counts>& calls() const { return calls_; }

private:
    MacSession* session_ = nullptr;
    bool isInOccasion_ = false;
    Counts before_;
    std::vector<Counts> calls_;
};

std::vector<FaultPoint> pointsOf(const std::vector<Counts>& calls, const std::vector<FaultyPort>& ports)
{
    static constexpr std::array<std::string_view, 3> fates{"raises", "hangs", "dies"};
    std::map<Place, std::vector<FaultPoint::Chance>> places;
    std::map<std::string, std::vector<FaultPoint::Chance>> byPort;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        std::map<std::string, std::uint32_t> sums;
        for (const auto& [place, count] : calls[i]) {
            places[place].push_back({i, static_cast<std::uint32_t>(count)});
            sums[place.first] += static_cast<std::uint32_t>(count);
        }
        for (const auto& [port, count] : sums) {
            byPort[port].push_back({i, count});
        }
    }
    std::vector<FaultPoint> points;
    for (const auto& [place, chances] : places) {
        for (const std::string_view fate : fates) {
            points.push_back({place.first, place.second, std::string{fate}, chances});
        }
        if (place.first == "files") {
            points.push_back({place.first, place.second, "loses-power", chances});
        }
    }
    for (const FaultyPort& port : ports) {
        for (const std::string& fault : port.faults) {
            if (const auto found = byPort.find(port.name); found != byPort.end()) {
                points.push_back({port.name, {}, fault, found->second});
            }
        }
    }
    return points;
}

} // namespace

std::vector<FaultPoint> rehearse(const std::vector<FaultyPort>& ports, const std::filesystem::path& resources)
{
    Rehearsal rehearsal;
    const Scenario scenario = parseScenario(documentOf(rehearsalPlan()), "rehearsal.yaml");
    const auto result = play(scenario, {.out = std::nullopt, .resources = resources}, rehearsal);
    static_cast<void>(result); // an occasion may do what is impossible just then
    return pointsOf(rehearsal.calls(), ports);
}

} // namespace sentrel::simulation
