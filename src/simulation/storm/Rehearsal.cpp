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

/// The uses of the ports so far, or on one occasion.
struct Uses {
    Counts calls; ///< of the product, by port and operation
    Counts asked; ///< how often a device would have failed, by port and its fault
};

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
                      {"audio", "[{id: 80, name: Jack, uid: BuiltInJack, transport: built-in}, "
                                "{id: 73, name: MacBook Pro Speakers, uid: BuiltInSpeakerDevice, transport: built-in, "
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

void subtract(Counts& counts, const Counts& earlier)
{
    for (auto& [place, count] : counts) {
        const auto found = earlier.find(place);
        count -= found == earlier.end() ? 0 : found->second;
    }
    std::erase_if(counts, [](const auto& entry) { return entry.second == 0; });
}

/// Counts the uses of each occasion.
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
        Uses uses = usesSoFar();
        isInOccasion_ = !isInOccasion_;
        if (isInOccasion_) {
            before_ = std::move(uses);
            return;
        }
        subtract(uses.calls, before_.calls);
        subtract(uses.asked, before_.asked);
        uses_.push_back(std::move(uses));
    }
    void checked(double /*at*/, const Step& /*step*/, const std::vector<Mismatch>& /*mismatches*/) override {}

    /// By occasion.
    [[nodiscard]] const std::vector<Uses>& uses() const { return uses_; }

private:
    [[nodiscard]] Uses usesSoFar() const
    {
        Uses uses{session_->plannedFaults().counted(), {}};
        for (const auto& [port, switches] : session_->mac().faults()) {
            for (const auto& [fault, count] : switches->asked()) {
                uses.asked[{port, fault}] = count;
            }
        }
        return uses;
    }

    MacSession* session_ = nullptr;
    bool isInOccasion_ = false;
    Uses before_;
    std::vector<Uses> uses_;
};

using Chances = std::vector<FaultPoint::Chance>;

void note(Chances& chances, std::size_t occasion, std::uint64_t count)
{
    chances.push_back({occasion, static_cast<std::uint32_t>(count)});
}

std::vector<FaultPoint> pointsOf(const std::vector<Uses>& uses)
{
    static constexpr std::array<std::string_view, 3> fates{"raises", "hangs", "dies"};
    std::map<Place, Chances> calls;
    std::map<std::string, Chances> ports;
    std::map<Place, Chances> faults;
    for (std::size_t i = 0; i < uses.size(); ++i) {
        std::map<std::string, std::uint64_t> sums;
        for (const auto& [place, count] : uses[i].calls) {
            note(calls[place], i, count);
            sums[place.first] += count;
        }
        for (const auto& [port, count] : sums) {
            note(ports[port], i, count);
        }
        for (const auto& [place, count] : uses[i].asked) {
            note(faults[place], i, count);
        }
    }
    std::vector<FaultPoint> points;
    for (const auto& [place, chances] : calls) {
        for (const std::string_view fate : fates) {
            points.push_back({place.first, place.second, std::string{fate}, chances});
        }
        if (place.first == "files") {
            points.push_back({place.first, place.second, "loses-power", chances});
        }
    }
    for (const auto& [port, chances] : ports) {
        points.push_back({port, {}, "raises", chances});
        points.push_back({port, {}, "hangs", chances});
    }
    for (const auto& [place, chances] : faults) {
        points.push_back({place.first, {}, place.second, chances});
    }
    return points;
}

} // namespace

std::vector<FaultPoint> rehearse(const std::filesystem::path& resources)
{
    Rehearsal rehearsal;
    const Scenario scenario = parseScenario(documentOf(rehearsalPlan()), "rehearsal.yaml");
    const auto result = play(scenario, {.out = std::nullopt, .resources = resources}, rehearsal);
    static_cast<void>(result); // an occasion may do what is impossible just then
    return pointsOf(rehearsal.uses());
}

} // namespace sentrel::simulation
