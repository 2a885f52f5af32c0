#include "BesideFloor.hpp"

#include "alerts/StoredAlert.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/page/PageRequests.hpp"
#include "simulation/page/PageServer.hpp"
#include "simulation/page/Visitors.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "support/TemporaryFolder.hpp"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

namespace sentrel::simulation {
namespace {

constexpr int alertCount = 1000;

/// A disk with a thousand alerts.
class Disk {
public:
    Disk()
    {
        const auto alerts = folder_.path() / "Application Support" / "pelma.Sentrel" / "Alerts";
        std::filesystem::create_directories(alerts);
        for (int number = 0; number < alertCount; ++number) {
            UUID::Octets octets{};
            octets[0] = static_cast<std::uint8_t>(number >> 8);
            octets[1] = static_cast<std::uint8_t>(number);
            const AlertEvent alert{UUID{octets},         TriggerReason::motion, Date{7.7e8 + number},
                                   "Mona's MacBook Pro", std::nullopt,          true};
            std::ofstream{alerts / (alert.id.text() + ".json")} << encodeJson(encodeStoredAlert({alert, false}));
        }
    }
    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
};

/// A served Mac with its window of settings open, and a page that listens.
class ServedMac {
public:
    explicit ServedMac(bool showsAlerts)
    {
        if (!isBound_) {
            throw std::runtime_error{"no port is free"};
        }
        mac_.start();
        page_.emplace(server_.port());
        use(R"({"open": "main"})");
        if (showsAlerts) {
            use(R"({"open": "alerts"})");
        }
        // Drawings from before the list was read go by; later ones are whole.
        bytes_ = page_->nextText("state").size();
        while (showsAlerts && bytes_ < alertCount * 200) {
            bytes_ = page_->nextText("state").size();
        }
    }
    ~ServedMac()
    {
        page_.reset();
        server_.stop();
        serving_.join();
    }
    ServedMac(const ServedMac&) = delete;

    /// Until the page has the whole event that tells of it.
    void changeSetting()
    {
        mac_.call([](MacSession& session) {
            session.changeSettings(
                [](AlarmSettings& settings) { settings.triggerOnMotion = !settings.triggerOnMotion; });
        });
        bytes_ = page_->nextText("state").size();
    }
    void sendNothing()
    {
        mac_.hub().publish("empty", "{}");
        benchmark::DoNotOptimize(page_->nextText("empty"));
    }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

private:
    void use(const std::string& action)
    {
        if (answerPage(mac_, "action", action).status != 204) {
            throw std::runtime_error{"a window doesn't open"};
        }
    }

    Disk disk_;
    LiveMac mac_{
        parseScenario("title: Page\nsettings: {requirePasswordForActions: false}\nsteps:\n- {at: 1s, do: arm}\n",
                      "page.yaml"),
        disk_.path(), SENTREL_SOURCE_DIR "/resources", 1, MacSession::storyDate};
    PageServer server_{mac_, {.web = SENTREL_SOURCE_DIR "/web", .token = visitorsToken, .port = 0}};
    const bool isBound_ = server_.bind();
    std::thread serving_{[this] { server_.run(); }};
    std::optional<ListeningPage> page_;
    std::size_t bytes_ = 0;
};

/// How much later than an empty event a change of the settings reaches a page; the limit is in milliseconds.
void settingReachesThePage(benchmark::State& state, bool showsAlerts)
{
    ServedMac served{showsAlerts};
    double nothing = std::numeric_limits<double>::max();
    double change = std::numeric_limits<double>::max();
    for ([[maybe_unused]] auto turn : state) {
        auto sendNothing = [&] { served.sendNothing(); };
        auto changeSetting = [&] { served.changeSetting(); };
        nothing = std::min(nothing, secondsOf(sendNothing));
        const double seconds = secondsOf(changeSetting);
        change = std::min(change, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["empty_ms"] = nothing * 1e3;
    state.counters["change_ms"] = change * 1e3;
    state.counters["later_ms"] = (change - nothing) * 1e3;
    state.counters["limit_ms"] = 20.0;
    state.counters["bytes"] = static_cast<double>(served.bytes());
}
BENCHMARK_CAPTURE(settingReachesThePage, settingsOpen, false)->UseManualTime();
BENCHMARK_CAPTURE(settingReachesThePage, aThousandAlertsOpen, true)->UseManualTime();

} // namespace
} // namespace sentrel::simulation
