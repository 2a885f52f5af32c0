#pragma once

#include <cstdint>
#include <functional>

namespace sentrel::ports {

/// `NSApplicationTerminateReply`.
enum class TerminateReply : std::uint64_t { cancel = 0, now = 1, later = 2 };

/// The application's callbacks (`NSApplicationDelegate`). Main thread.
struct ApplicationDelegate {
    std::function<void()> didFinishLaunching;
    std::function<TerminateReply()> shouldTerminate;
    std::function<void()> willTerminate;
    std::function<bool()> shouldTerminateAfterLastWindowClosed;
};

/// This application (`NSApplication`). Main thread.
class Application {
public:
    virtual ~Application() = default;

    /// Replaces the delegate; an empty one ends the calls.
    virtual void setDelegate(ApplicationDelegate delegate) = 0;

    /// `setActivationPolicy:` with an `NSApplicationActivationPolicy`: 0 regular, 1 accessory.
    virtual void setActivationPolicy(std::int64_t policy) = 0;

    /// `terminate:`: asks the delegate, and ends the process unless it refuses. May return.
    virtual void terminate() = 0;

    /// `replyToApplicationShouldTerminate:`: the answer that the delegate had postponed.
    virtual void replyToShouldTerminate(bool shouldTerminate) = 0;
};

} // namespace sentrel::ports
