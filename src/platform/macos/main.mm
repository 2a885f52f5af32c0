#include "app/SentrelApp.hpp"
#include "platform/macos/MacPlatform.hpp"

#import <AppKit/AppKit.h>

/// Hands the application's launch and end to the product.
@interface SentrelApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithApp:(sentrel::SentrelApp&)app pushes:(sentrel::macos::MacRemoteNotifications&)pushes;
@end

@implementation SentrelApplicationDelegate {
    sentrel::SentrelApp* _app;
    sentrel::macos::MacRemoteNotifications* _pushes;
}

- (instancetype)initWithApp:(sentrel::SentrelApp&)app pushes:(sentrel::macos::MacRemoteNotifications&)pushes
{
    self = [super init];
    if (self != nil) {
        _app = &app;
        _pushes = &pushes;
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

- (void)application:(NSApplication*)application didRegisterForRemoteNotificationsWithDeviceToken:(NSData*)deviceToken
{
    _pushes->didRegister();
}

- (void)application:(NSApplication*)application didFailToRegisterForRemoteNotificationsWithError:(NSError*)error
{
    _pushes->didFailToRegister(error);
}

- (void)application:(NSApplication*)application didReceiveRemoteNotification:(NSDictionary*)userInfo
{
    _pushes->didReceive(userInfo);
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
        sentrel::macos::MacPlatform mac{sentrel::CloudKitService::containerIdentifier};
        sentrel::SentrelApp app{mac.ports()};
        NSApplication* const application = NSApplication.sharedApplication;
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        SentrelApplicationDelegate* const delegate =
            [[SentrelApplicationDelegate alloc] initWithApp:app pushes:mac.remoteNotifications()];
        application.delegate = delegate; // which the application does not retain
        [application run];
    }
    return 0;
}
