#pragma once

#include "ports/Application.hpp"
#include "simulation/FaultSwitches.hpp"

#include <cstdint>
#include <functional>
#include <utility>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

/// The application object of the product's process. Notes `activation-policy` when a policy is set, `quit.asked` when
/// asked to quit, `quit.cancelled` when the delegate refuses, and `quit` at the end. The product's main thread.
class SimulatedApplication final : public ports::Application {
public:
    explicit SimulatedApplication(ports::Journal& journal) : journal_(journal) {}

    void setDelegate(ports::ApplicationDelegate delegate) override { delegate_ = std::move(delegate); }
    void setActivationPolicy(std::int64_t policy) override;
    void terminate() override;
    void replyToShouldTerminate(bool shouldTerminate) override;

    /// Starts a new process and forgets the state of the previous one. `ended` is called at the end of `terminate` or
    /// of the reply, after the delegate was told; it must stop the process.
    void start(std::function<void()> ended);

    /// Tells the delegate that launching has finished.
    void finishLaunching();

    /// The process is gone.
    void end();

    /// Whether the delegate has promised an answer.
    [[nodiscard]] bool isAwaitingReply() const { return isAwaitingReply_; }

    /// 0 regular, 1 accessory; at first that of an application without a Dock icon.
    [[nodiscard]] std::int64_t activationPolicy() const { return policy_; }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    void finish();

    ports::Journal& journal_;
    ports::ApplicationDelegate delegate_;
    std::function<void()> ended_;
    std::int64_t policy_ = accessory;
    bool isAwaitingReply_ = false;
    bool hasEnded_ = false;

    static constexpr std::int64_t regular = 0;
    static constexpr std::int64_t accessory = 1;
    static constexpr std::int64_t prohibited = 2;
};

} // namespace sentrel::simulation
