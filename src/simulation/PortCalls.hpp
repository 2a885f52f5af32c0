#pragma once

#include "simulation/HangingCalls.hpp"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// An exception raised by a framework. Like those of Objective-C, it is not a `std::exception`.
struct Raised {
    std::string port;
    std::string operation;
};

/// The gate that every call of the product to a simulated device passes. Tests count the calls here, or decide which of
/// them raise or hang. Any thread.
class PortCalls {
public:
    enum class Fate { passes, raises, hangs };
    using Decide = std::function<Fate(std::string_view port, std::string_view operation)>;

    /// With null, calls can only pass or raise.
    explicit PortCalls(HangingCalls* hanging = nullptr) : hanging_(hanging) {}

    /// Sets the function that decides the fate of each call of the product from now on; an empty one lets all pass.
    /// Calls may hang if `prepareToHang` was called in time.
    void decideBy(Decide decide);

    [[nodiscard]] Fate fateOf(std::string_view port, std::string_view operation);

    /// False for calls by devices, tests and the simulated person.
    [[nodiscard]] bool isProductCalling() const;

    /// While it lives, the calling thread's calls count as calls between devices.
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
    std::atomic<bool> hasDecision_ = false; // spares nearly every call the lock
};

} // namespace sentrel::simulation
