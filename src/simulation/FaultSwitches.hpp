#pragma once

#include "runtime/Async.hpp"
#include "runtime/Semaphore.hpp"
#include "simulation/PortCalls.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The named faults that one simulated device can be given, all off at first. Every device has two more: `raises` (a
/// call throws `Raised`) and `hangs` (a call never comes back). Any thread.
class FaultSwitches {
public:
    FaultSwitches(std::initializer_list<std::string_view> names);

    /// Makes the device fail that way for the next `times` uses (negative: until healed; 0: heal now). False if the
    /// device has no such fault.
    bool set(std::string_view name, int times = -1);

    /// Whether the device may fail that way at its next use.
    [[nodiscard]] bool isSet(std::string_view name) const;

    /// Whether the device may fail at its next use.
    [[nodiscard]] bool isAnySet() const;

    /// The names of the faults that are set.
    [[nodiscard]] std::vector<std::string> active() const;

    /// How often each fault has struck.
    [[nodiscard]] std::map<std::string, std::uint64_t, std::less<>> struck() const;
    [[nodiscard]] std::uint64_t struck(std::string_view name) const;
    /// How often the device has asked for each fault, whether it was set or not; without `raises` and `hangs`.
    [[nodiscard]] std::map<std::string, std::uint64_t, std::less<>> asked() const;
    /// How often `hangs` has struck.
    [[nodiscard]] std::uint64_t timesHung() const { return hangs_.struck; }

    /// Heals everything. A call that hangs stays where it is.
    void clear();

    /// Whether the device must fail now; counts as one use. Fatal if the name isn't one of the device's faults.
    [[nodiscard]] bool strikes(std::string_view name);

    /// Call first in each operation of a port. Throws `Raised` or never returns if a fault or the gate says so.
    void call(std::string_view operation);

    /// The same for an awaited operation: a hanging one never completes, and blocks no thread.
    [[nodiscard]] Async<void> awaitedCall(std::string_view operation);

    /// All names, for help and for messages.
    [[nodiscard]] std::vector<std::string> names() const;

    /// Routes the device's calls through the gate under the port's name. Call before the first call.
    void connect(PortCalls& calls, std::string port);

    /// Called after each `set`, on the thread that sets. Install before the first use.
    void onSet(std::function<void()> wasSet) { wasSet_ = std::move(wasSet); }

private:
    struct Fault {
        std::string name;
        std::atomic<int> remaining = 0; // uses; negative: until healed
        std::atomic<std::uint64_t> struck = 0;
        std::atomic<std::uint64_t> asked = 0;
    };

    static std::vector<Fault> namedFaults(std::initializer_list<std::string_view> names);
    [[nodiscard]] Fault* find(std::string_view name);
    [[nodiscard]] static bool strikes(Fault& fault);
    [[nodiscard]] PortCalls::Fate fateOf(std::string_view operation);

    PortCalls* calls_ = nullptr;
    std::string port_;
    std::function<void()> wasSet_;
    Semaphore never_;           // never signalled
    std::vector<Fault> faults_; // by name; read at every call of every port, so without a lock
    Fault& raises_;
    Fault& hangs_;
};

} // namespace sentrel::simulation
