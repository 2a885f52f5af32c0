#pragma once

#include "simulation/HangingCalls.hpp"

#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// An exception as frameworks raise it: like one of Objective-C, it is no `std::exception`.
struct Raised {
    std::string port;
    std::string operation;
};

/// The gate through which each call of the product at a simulated device passes. A test counts the calls there, lets
/// the one or the other raise or hang, or lets a seed decide. Any thread.
class PortCalls {
public:
    enum class Fate { passes, raises, hangs };
    using Decide = std::function<Fate(std::string_view port, std::string_view operation)>;

    /// Without a place to hang in, a call can only pass or raise.
    explicit PortCalls(HangingCalls* hanging = nullptr) : hanging_(hanging) {}

    /// Decides on each call of the product from now on; none lets all pass. Calls may hang if `prepareToHang` was
    /// called in time.
    void decideBy(Decide decide);

    [[nodiscard]] Fate fateOf(std::string_view port, std::string_view operation);

    /// False for what devices, tests and persons ask of a device.
    [[nodiscard]] bool isProductCalling() const;

    /// While it lives, the calling thread's calls are those of a device that uses another.
    class DeviceScope {
    public:
        DeviceScope() { ++depth; }
        ~DeviceScope() { --depth; }
        DeviceScope(const DeviceScope&) = delete;

    private:
        friend class PortCalls;
        static thread_local int depth;
    };

    void prepareToHang();
    [[noreturn]] void hang();

private:
    HangingCalls* const hanging_;
    std::mutex mutex_;
    Decide decide_;
};

} // namespace sentrel::simulation
