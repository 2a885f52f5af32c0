#include "mac/application/MacApplication.hpp"

#include "mac/cloud/MacRemoteNotifications.hpp"
#include "mac/windows/MacPreviewPanel.hpp"
#include "mac/windows/MainMenu.hpp"
#include "mac/windows/Windows.hpp"

#include <utility>

@interface SentrelApplicationDelegate : NSObject <NSApplicationDelegate> {
@public
    sentrel::ports::ApplicationDelegate told;
    sentrel::mac::MacRemoteNotifications* pushes;
    sentrel::mac::MacPreviewPanel* previews;
}
@end

// Each calls a copy: the callback may set another delegate.
@implementation SentrelApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification
{
    if (const auto launched = told.didFinishLaunching) {
        launched();
    }
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender
{
    const auto asked = told.shouldTerminate;
    return asked ? static_cast<NSApplicationTerminateReply>(asked()) : NSTerminateNow;
}

- (void)applicationWillTerminate:(NSNotification*)notification
{
    // The process exits after this without unwinding main: all clean-up happens here.
    if (const auto ending = told.willTerminate) {
        ending();
    }
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender
{
    const auto asked = told.shouldTerminateAfterLastWindowClosed;
    return asked && asked();
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app
{
    return YES;
}

- (void)application:(NSApplication*)application didRegisterForRemoteNotificationsWithDeviceToken:(NSData*)deviceToken
{
    pushes->didRegister();
}

- (void)application:(NSApplication*)application didFailToRegisterForRemoteNotificationsWithError:(NSError*)error
{
    pushes->didFailToRegister(error);
}

- (void)application:(NSApplication*)application didReceiveRemoteNotification:(NSDictionary<NSString*, id>*)userInfo
{
    pushes->didReceive(userInfo);
}

- (BOOL)acceptsPreviewPanelControl:(QLPreviewPanel*)panel
{
    return previews->accepts();
}

- (void)beginPreviewPanelControl:(QLPreviewPanel*)panel
{
    previews->begin(panel);
}

- (void)endPreviewPanelControl:(QLPreviewPanel*)panel
{
    previews->end(panel);
}

@end

namespace sentrel::mac {

MacApplication::MacApplication(MacRemoteNotifications& pushes, MacPreviewPanel& previews)
    : delegate_([[SentrelApplicationDelegate alloc] init])
{
    delegate_->pushes = &pushes;
    delegate_->previews = &previews;
    NSApplication.sharedApplication.delegate = delegate_; // not retained by the application
    NSApp.mainMenu = makeMainMenu();
}

MacApplication::~MacApplication()
{
    NSApp.delegate = nil;
}

void MacApplication::setDelegate(ports::ApplicationDelegate delegate)
{
    delegate_->told = std::move(delegate);
}

void MacApplication::setActivationPolicy(std::int64_t policy)
{
    [NSApp setActivationPolicy:static_cast<NSApplicationActivationPolicy>(policy)];
}

void MacApplication::terminate()
{
    // While an answer is deferred, the application waits for it in a nested event loop.
    performInMainRunLoop([] { [NSApp terminate:nil]; });
}

void MacApplication::replyToShouldTerminate(bool shouldTerminate)
{
    [NSApp replyToApplicationShouldTerminate:shouldTerminate];
}

void MacApplication::run()
{
    [NSApp run];
}

} // namespace sentrel::mac
