#include "BesideFloor.hpp"

#include "alerts/AlertMerge.hpp"
#include "alerts/AlertSections.hpp"
#include "alerts/LocalAlertStore.hpp"
#include "ports/Language.hpp"
#include "simulation/mac/language/IcuCalendar.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include <malloc.h>

namespace sentrel {
namespace {

constexpr Date now{7.9e8};

class EnglishOnly final : public ports::Language {
public:
    [[nodiscard]] std::string localized(std::string_view key) override { return std::string{key}; }
    [[nodiscard]] bool containsIgnoringCase(std::string_view /*text*/, std::string_view /*part*/) override
    {
        return false;
    }
    [[nodiscard]] std::size_t characterCount(std::string_view text) override { return text.size(); }
};

/// Alerts of three years. A tenth of those on this Mac, where no more than a thousand are kept, is in the cloud too.
struct Lists {
    explicit Lists(std::size_t count)
    {
        std::mt19937_64 random{count};
        std::uniform_real_distribution<double> age{0.0, 3.0 * 365.0 * 86400.0};
        for (std::size_t i = 0; i < count; ++i) {
            UUID::Octets octets{};
            for (auto& octet : octets) {
                octet = static_cast<std::uint8_t>(random());
            }
            const UUID id = UUID::fromRandom(octets);
            AlertEvent alert{
                id,  TriggerReason::motion, now.addingSeconds(-age(random)), "Mona's MacBook Pro", id.text() + ".jpg",
                true};
            unsorted.push_back({alert, AlertStorageLocation::cloud});
            const bool isLocal = i % 11 == 0 && local.size() < LocalAlertStore::mostAlerts;
            if (isLocal) {
                local.push_back({alert, true});
            }
            if (!isLocal || local.size() % 10 == 0) {
                cloud.push_back(std::move(alert));
            }
        }
        std::sort(local.begin(), local.end(), [](const StoredAlert& left, const StoredAlert& right) {
            return left.alert.timestamp > right.alert.timestamp;
        });
    }

    std::vector<AlertRow> unsorted;
    std::vector<AlertEvent> cloud;
    std::vector<StoredAlert> local;
};

void sortByDate(std::vector<AlertRow>& rows)
{
    std::sort(rows.begin(), rows.end(),
              [](const AlertRow& left, const AlertRow& right) { return left.alert.timestamp > right.alert.timestamp; });
}

struct Times {
    double floor = std::numeric_limits<double>::max();
    double work = std::numeric_limits<double>::max();
};

/// One turn of both, with the lists made beforehand; the fastest turn counts.
double measureOnce(const Lists& lists, ports::Calendar& calendar, ports::Language& language, Times& fastest)
{
    std::vector<AlertRow> rows = lists.unsorted;
    auto sort = [&rows] { sortByDate(rows); };
    fastest.floor = std::min(fastest.floor, secondsOf(sort, processorSeconds));

    std::vector<AlertEvent> cloud = lists.cloud;
    std::vector<StoredAlert> local = lists.local;
    MergedAlerts merged;
    std::vector<AlertSection> sections;
    auto build = [&] {
        merged = mergedAlerts(std::move(cloud), std::move(local));
        sections = alertSections(std::make_shared<const std::vector<AlertRow>>(std::move(merged.rows)), now, calendar,
                                 language);
    };
    const double seconds = secondsOf(build, processorSeconds);
    benchmark::DoNotOptimize(sections);
    fastest.work = std::min(fastest.work, seconds);
    return seconds;
}

/// Merging, sorting and sectioning, beside sorting the same rows by date.
void buildAlertList(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const Lists lists{count};
    simulation::IcuCalendar calendar{"en_US", "Europe/Paris"};
    EnglishOnly language;
    Times fastest;
    for ([[maybe_unused]] auto turn : state) {
        state.SetIterationTime(measureOnce(lists, calendar, language, fastest));
    }
    state.counters["floor_ms"] = fastest.floor * 1e3;
    state.counters["work_ms"] = fastest.work * 1e3;
    state.counters["ratio"] = fastest.work / fastest.floor;
    state.counters["limit"] = 2.0;
}
BENCHMARK(buildAlertList)->Arg(11'000)->UseManualTime();

/// The slope of log(y) over log(x), by least squares.
double fittedExponent(const std::vector<std::pair<double, double>>& points)
{
    double sumX = 0.0;
    double sumY = 0.0;
    double sumXX = 0.0;
    double sumXY = 0.0;
    for (const auto& [x, y] : points) {
        sumX += std::log(x);
        sumY += std::log(y);
        sumXX += std::log(x) * std::log(x);
        sumXY += std::log(x) * std::log(y);
    }
    const auto count = static_cast<double>(points.size());
    return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

/// How the time grows up to a million rows: the exponent of n, beside those of n log n and of sorting the same rows.
void growthOfAlertList(benchmark::State& state)
{
    // Memory that was used before is used again, or the growth would be that of asking the system for more.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    simulation::IcuCalendar calendar{"en_US", "Europe/Paris"};
    EnglishOnly language;
    std::vector<std::pair<double, double>> work;
    std::vector<std::pair<double, double>> floor;
    std::vector<std::pair<double, double>> ideal;
    for ([[maybe_unused]] auto turn : state) {
        double seconds = 0.0;
        for (const std::size_t count : {10'000U, 30'000U, 100'000U, 300'000U, 1'000'000U}) {
            const Lists lists{count};
            Times fastest;
            for (std::size_t repetition = 0; repetition < 3 + 100'000 / count; ++repetition) {
                seconds += measureOnce(lists, calendar, language, fastest);
            }
            const auto n = static_cast<double>(count);
            work.emplace_back(n, fastest.work);
            floor.emplace_back(n, fastest.floor);
            ideal.emplace_back(n, n * std::log(n));
        }
        state.SetIterationTime(seconds);
    }
    state.counters["exponent"] = fittedExponent(work);
    state.counters["exponent_nlogn"] = fittedExponent(ideal);
    state.counters["exponent_sort"] = fittedExponent(floor);
    state.counters["million_ms"] = work.back().second * 1e3;
}
BENCHMARK(growthOfAlertList)->UseManualTime()->Iterations(1);

} // namespace
} // namespace sentrel
