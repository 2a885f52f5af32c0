#pragma once

#include "simulation/PortCalls.hpp"
#include "simulation/Word.hpp"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// A fault of one call of the product, counted from the moment at which the fault is planned.
struct CallFault {
    enum class Fate {
        raises,    ///< the call ends with an exception
        hangs,     ///< it never comes back
        dies,      ///< the process ends inside it
        losesPower ///< the machine does, and the disk loses what was not synchronised
    };

    std::string port;
    std::string operation;  ///< empty: any
    std::uint32_t call = 1; ///< the number of the call that is struck
    Fate fate = Fate::raises;
};

/// The words of the scenario language for fates.
inline constexpr std::array<Word<CallFault::Fate>, 4> fateWords{{
    {"raises", CallFault::Fate::raises},
    {"hangs", CallFault::Fate::hangs},
    {"dies", CallFault::Fate::dies},
    {"loses-power", CallFault::Fate::losesPower},
}};

[[nodiscard]] constexpr std::string_view nameOf(CallFault::Fate fate)
{
    return wordFor(fateWords, fate);
}

/// The calls of the product at all ports, and the faults that are planned for some of them. Any thread.
class PlannedFaults {
public:
    using Place = std::pair<std::string, std::string>; ///< port and operation
    using Struck = std::map<std::pair<Place, CallFault::Fate>, std::uint64_t>;
    using Die = std::function<void(CallFault::Fate fate)>;

    /// `die` is called inside a call whose fate ends the process; the call then hangs.
    PlannedFaults(PortCalls& calls, Die die) : calls_(calls), die_(std::move(die)) {}

    void add(CallFault fault);

    /// Forgets the faults that have not struck yet.
    void clear();

    /// The faults that have not struck yet.
    [[nodiscard]] std::vector<CallFault> waiting() const;

    /// Counts all calls from now on, also while no fault is planned.
    void countCalls();
    [[nodiscard]] std::map<Place, std::uint64_t> counted() const;

    /// How often each place was struck, by fate.
    [[nodiscard]] Struck struck() const;

private:
    [[nodiscard]] PortCalls::Fate decide(std::string_view port, std::string_view operation);
    void listen();

    PortCalls& calls_;
    const Die die_;
    mutable std::mutex mutex_;
    std::vector<CallFault> waiting_;
    bool isCounting_ = false;
    std::map<std::string, std::map<std::string, std::uint64_t, std::less<>>, std::less<>> counted_;
    Struck struck_;
};

} // namespace sentrel::simulation
