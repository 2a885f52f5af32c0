#include "simulation/storm/StormSummary.hpp"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <ostream>
#include <string_view>

namespace sentrel::simulation {

namespace {

constexpr std::array<std::string_view, 3> fates{"raises", "hangs", "dies"};

std::string number(double value)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", value);
    return text.data();
}

std::uint64_t countOf(const std::map<std::string, std::uint64_t>& counts, const std::string& key)
{
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
}

void printList(std::string_view title, const std::vector<std::string>& items, std::ostream& out)
{
    constexpr std::size_t most = 12;
    out << title << ": " << items.size();
    for (std::size_t i = 0; i < items.size() && i < most; ++i) {
        out << (i == 0 ? " (" : ", ") << items[i];
    }
    out << (items.empty() ? "\n" : items.size() > most ? ", ...)\n" : ")\n");
}

/// Faults by port: how often any of them struck.
std::map<std::string, std::uint64_t> byPort(const Experience& experience)
{
    std::map<std::string, std::uint64_t> ports;
    for (const auto& [fault, count] : experience.faults) {
        ports[fault.substr(0, fault.find(' '))] += count;
    }
    return ports;
}

/// Faults by kind: the last word.
std::map<std::string, std::uint64_t> byKind(const Experience& experience)
{
    std::map<std::string, std::uint64_t> kinds;
    for (const auto& [fault, count] : experience.faults) {
        kinds[fault.substr(fault.rfind(' ') + 1)] += count;
    }
    return kinds;
}

void printCounts(std::string_view title, const std::map<std::string, std::uint64_t>& counts, std::ostream& out)
{
    out << title << ":";
    for (const auto& [name, count] : counts) {
        out << ' ' << name << ' ' << count;
    }
    out << '\n';
}

} // namespace

Unreached unreachedBy(const Experience& experience, const std::vector<FaultyPort>& ports)
{
    Unreached unreached;
    const auto note = [&](const std::string& fault) {
        constexpr std::uint64_t often = 100;
        const auto count = countOf(experience.faults, fault);
        if (count == 0) {
            unreached.faults.push_back(fault);
        } else if (count < often) {
            unreached.rare.push_back(fault);
        }
    };
    for (const FaultyPort& port : ports) {
        for (const std::string& fault : port.faults) {
            note(port.name + " " + fault);
        }
    }
    for (const auto& [call, count] : experience.calls) {
        for (const std::string_view fate : fates) {
            note(call + " " + std::string{fate});
        }
    }
    const auto names = stateNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (std::size_t j = i + 1; j < names.size(); ++j) {
            std::string pair = std::string{names[i]} + " + " + std::string{names[j]};
            if (!experience.pairs.contains(pair)) {
                unreached.pairs.push_back(std::move(pair));
            }
        }
    }
    return unreached;
}

void print(const StormReport& report, const Unreached& unreached, const std::vector<SavedViolation>& saved,
           std::ostream& out)
{
    const Experience& all = report.experience;
    std::uint64_t faults = 0;
    for (const auto& [fault, count] : all.faults) {
        faults += count;
    }
    out << (report.isInterrupted ? "Interrupted. " : "") << report.worlds << " worlds, " << number(all.hours)
        << " hours, " << number(all.armedHours) << " of them armed\n"
        << all.triggers << " triggers, " << all.alerts << " alerts, " << faults << " faults, " << all.crashes
        << " crashes survived\n";
    printCounts("faults by kind", byKind(all), out);
    printCounts("faults by port", byPort(all), out);
    out << "states seen together: " << all.pairs.size() << " pairs\n";
    printList("pairs never seen", unreached.pairs, out);
    printList("faults never reached", unreached.faults, out);
    printList("faults reached fewer than 100 times", unreached.rare, out);
    for (const StormViolation& found : report.violations) {
        out << "VIOLATION in world " << found.world << " at " << number(found.violation.at)
            << " s: " << found.violation.invariant << ": " << found.violation.what << '\n';
    }
    for (const SavedViolation& each : saved) {
        out << "minimal play of world " << each.found.world << ", " << each.steps << " steps: " << each.file << '\n';
    }
    out << (report.violations.empty() ? "no violation\n" : std::to_string(report.violations.size()) + " violations\n");
}

Json jsonOf(const StormReport& report, const Unreached& unreached, const std::vector<SavedViolation>& saved)
{
    const Experience& all = report.experience;
    Json violations = Json::array();
    for (const StormViolation& found : report.violations) {
        violations.push_back({{"world", found.world},
                              {"at", found.violation.at},
                              {"invariant", found.violation.invariant},
                              {"what", found.violation.what}});
    }
    Json plays = Json::array();
    for (const SavedViolation& each : saved) {
        plays.push_back({{"world", each.found.world}, {"steps", each.steps}, {"file", each.file}});
    }
    return {{"interrupted", report.isInterrupted},
            {"worlds", report.worlds},
            {"hours", all.hours},
            {"armedHours", all.armedHours},
            {"triggers", all.triggers},
            {"alerts", all.alerts},
            {"crashes", all.crashes},
            {"faults", all.faults},
            {"calls", all.calls},
            {"pairs", all.pairs},
            {"pairsNeverSeen", unreached.pairs},
            {"faultsNeverReached", unreached.faults},
            {"faultsReachedRarely", unreached.rare},
            {"violations", std::move(violations)},
            {"plays", std::move(plays)}};
}

} // namespace sentrel::simulation
