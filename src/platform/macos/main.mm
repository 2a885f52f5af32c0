#include "app/SentrelApp.hpp"
#include "platform/macos/MacPlatform.hpp"

#import <AppKit/AppKit.h>

/// Hands the application's launch and end to the product.
@interface SentrelApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithApp:(sentrel::SentrelApp&)app;
@end

@implementation SentrelApplicationDelegate {
    sentrel::SentrelApp* _app;
}

- (instancetype)initWithApp:(sentrel::SentrelApp&)app
{
    self = [super init];
    if (self != nil) {
        _app = &app;
    }
    return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification
{
    _app->launch();
}

- (void)applicationWillTerminate:(NSNotification*)notification
{
    // The process exits after this without unwinding main: whatever must be undone is undone here.
    _app->terminate();
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender
{
    // It lives in the menu bar.
    return NO;
}

@end

int main()
{
    @autoreleasepool {
        sentrel::macos::MacPlatform mac;
        sentrel::SentrelApp app{mac.ports()};
        NSApplication* const application = NSApplication.sharedApplication;
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        SentrelApplicationDelegate* const delegate = [[SentrelApplicationDelegate alloc] initWithApp:app];
        application.delegate = delegate; // which the application does not retain
        [application run];
    }
    return 0;
}
