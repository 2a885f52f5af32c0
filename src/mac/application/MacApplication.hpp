#pragma once

#include "ports/Application.hpp"

#import <AppKit/AppKit.h>

@class SentrelApplicationDelegate;

namespace sentrel::mac {

class MacPreviewPanel;
class MacRemoteNotifications;

/// The shared application and its only AppKit delegate, which passes pushes and the preview panel's calls on to their
/// adapters.
class MacApplication final : public ports::Application {
public:
    MacApplication(MacRemoteNotifications& pushes, MacPreviewPanel& previews);
    ~MacApplication() override;
    MacApplication(const MacApplication&) = delete;
    MacApplication& operator=(const MacApplication&) = delete;

    void setDelegate(ports::ApplicationDelegate delegate) override;
    void setActivationPolicy(std::int64_t policy) override;
    void terminate() override;
    void replyToShouldTerminate(bool shouldTerminate) override;

    /// Serves events until the application ends; never returns. Call after `setDelegate`.
    void run();

private:
    SentrelApplicationDelegate* const delegate_;
};

} // namespace sentrel::mac
