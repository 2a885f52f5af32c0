#pragma once

#include <cstdint>
#include <functional>

namespace sentrel::ports {

/// `NSApplicationTerminateReply`.
enum class TerminateReply : std::uint64_t { cancel = 0, now = 1, later = 2 };

/// What the application is told and asked (`NSApplicationDelegate`). Main thread.
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

    /// Sets who is told; an empty delegate ends it.
    virtual void setDelegate(ApplicationDelegate delegate) = 0;

    /// `setActivationPolicy:` with an `NSApplicationActivationPolicy`: 0 regular, 1 accessory.
    virtual void setActivationPolicy(std::int64_t policy) = 0;

    /// `terminate:`: asks the delegate, and ends the process unless that says no. It may return.
    virtual void terminate() = 0;

    /// `replyToApplicationShouldTerminate:`: the answer that the delegate promised for later.
    virtual void replyToShouldTerminate(bool shouldTerminate) = 0;
};

} // namespace sentrel::ports
