#pragma once

#include "runtime/Async.hpp"
#include "runtime/Semaphore.hpp"
#include "simulation/PortCalls.hpp"

#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The ways in which one simulated device can be made to refuse or fail, each by name and off at first. Every device
/// knows two more: `raises` (a call ends with an exception as frameworks raise it) and `hangs` (a call never comes
/// back). Any thread.
class FaultSwitches {
public:
    FaultSwitches(std::initializer_list<std::string_view> names);

    /// Makes the device fail that way for this many further uses (negative: until healed; 0: heal now). False when
    /// the device has no such fault.
    bool set(std::string_view name, int times = -1);

    /// Heals everything. A call that hangs stays where it is.
    void clear();

    /// Whether the device must fail now; counts as one use. The name is one of those that it was made with.
    [[nodiscard]] bool strikes(std::string_view name);

    /// The first thing in each operation of a port. Throws `Raised`, or doesn't come back, when that is the call's
    /// fate.
    void call(std::string_view operation);

    /// The same in an operation that is awaited: one that hangs never answers, and holds nobody's thread.
    [[nodiscard]] Async<void> awaitedCall(std::string_view operation);

    /// All names, for help and for messages.
    [[nodiscard]] std::vector<std::string> names() const;

    /// Has the device's calls pass the gate under the port's name. Before the first call.
    void connect(PortCalls& calls, std::string port);

    /// Is told after each fault that is set, on the thread that sets it. Before the first use.
    void onSet(std::function<void()> wasSet) { wasSet_ = std::move(wasSet); }

private:
    [[nodiscard]] PortCalls::Fate fateOf(std::string_view operation);

    PortCalls* calls_ = nullptr;
    std::string port_;
    std::function<void()> wasSet_;
    Semaphore never_; // nobody signals it
    mutable std::mutex mutex_;
    std::map<std::string, int, std::less<>> remaining_;
};

} // namespace sentrel::simulation
