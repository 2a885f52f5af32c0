#include "mac/Adapters.hpp"

#include "mac/cloud/CloudRecords.hpp"
#include "mac/foundation/CallCopy.hpp"
#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/Windows.hpp"

#import <AppKit/AppKit.h>
#import <QuickLookUI/QuickLookUI.h>

#include <nlohmann/json.hpp>

#include <utility>

using namespace sentrel;
using namespace sentrel::mac;

namespace {

/// The dictionary as a JSON object, without entries whose key is no string or whose value JSON can't hold.
Json jsonOf(NSDictionary* dictionary)
{
    NSMutableDictionary* const entries = [NSMutableDictionary dictionary];
    for (const id key in dictionary) {
        if (as<NSString>(key) != nil && [NSJSONSerialization isValidJSONObject:@[ dictionary[key] ]]) {
            entries[key] = dictionary[key];
        }
    }
    NSData* const data = [NSJSONSerialization dataWithJSONObject:entries options:NSJSONWritingOptions {} error:nil];
    return parseJson(bytesOf(data)).value_or(Json::object());
}

/// A JSON object as a dictionary; nil when it is no object.
NSDictionary* dictionaryObject(const Json& object)
{
    const std::string text = encodeJson(object);
    NSData* const data = [NSData dataWithBytes:text.data() length:text.size()];
    return as<NSDictionary>([NSJSONSerialization JSONObjectWithData:data options:NSJSONReadingOptions {} error:nil]);
}

} // namespace

/// Gives the shared panel of Quick Look the product's items.
@interface SentrelPreviewSource : NSObject <QLPreviewPanelDataSource> {
@public
    ports::PreviewDataSource* offered; ///< null: nothing
    QLPreviewPanel* controlled;        ///< while the application has control
}
@end

@implementation SentrelPreviewSource

- (NSInteger)numberOfPreviewItemsInPreviewPanel:(QLPreviewPanel*)panel
{
    return offered == nullptr ? 0 : static_cast<NSInteger>(offered->numberOfItems());
}

- (id<QLPreviewItem>)previewPanel:(QLPreviewPanel*)panel previewItemAtIndex:(NSInteger)index
{
    if (offered == nullptr || index < 0 || static_cast<std::size_t>(index) >= offered->numberOfItems()) {
        return nil;
    }
    return fileURL(offered->itemAt(static_cast<std::size_t>(index)));
}

@end

/// The application's only delegate, for the application itself, pushes and the preview panel.
@interface SentrelApplicationDelegate : NSObject <NSApplicationDelegate> {
@public
    ports::ApplicationDelegate told;
    ports::RemoteNotifications::Receiver pushed;
    ports::PreviewPanelControl previewing;
    SentrelPreviewSource* source;
}
@end

@implementation SentrelApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification
{
    callCopy(told.didFinishLaunching);
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender
{
    const auto asked = told.shouldTerminate;
    return asked ? static_cast<NSApplicationTerminateReply>(asked()) : NSTerminateNow;
}

- (void)applicationWillTerminate:(NSNotification*)notification
{
    // The process exits after this without unwinding main: all clean-up happens here.
    callCopy(told.willTerminate);
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
    callCopy(pushed.didRegister);
}

- (void)application:(NSApplication*)application didFailToRegisterForRemoteNotificationsWithError:(NSError*)error
{
    callCopy(pushed.didFailToRegister, textOf(error.localizedDescription));
}

- (void)application:(NSApplication*)application didReceiveRemoteNotification:(NSDictionary<NSString*, id>*)userInfo
{
    callCopy(pushed.didReceive, jsonOf(userInfo));
}

- (BOOL)acceptsPreviewPanelControl:(QLPreviewPanel*)panel
{
    const auto asked = previewing.accepts;
    return asked && asked();
}

- (void)beginPreviewPanelControl:(QLPreviewPanel*)panel
{
    source->controlled = panel;
    callCopy(previewing.begin);
    if (source->offered != nullptr) {
        panel.dataSource = source;
    }
}

- (void)endPreviewPanelControl:(QLPreviewPanel*)panel
{
    callCopy(previewing.end);
    panel.dataSource = nil;
    source->controlled = nil;
}

@end

namespace {

/// The shared application.
class MacApplication final : public ports::Application {
public:
    explicit MacApplication(SentrelApplicationDelegate* delegate) : delegate_(delegate)
    {
        NSApplication.sharedApplication.delegate = delegate_; // not retained by the application
        NSApp.mainMenu = makeMainMenu();
    }
    ~MacApplication() override { NSApp.delegate = nil; }
    MacApplication(const MacApplication&) = delete;

    void setDelegate(ports::ApplicationDelegate delegate) override { delegate_->told = std::move(delegate); }
    void setActivationPolicy(std::int64_t policy) override
    {
        [NSApp setActivationPolicy:static_cast<NSApplicationActivationPolicy>(policy)];
    }
    void terminate() override
    {
        // While an answer is deferred, the application waits for it in a nested event loop.
        performInMainRunLoop([] { [NSApp terminate:nil]; });
    }
    void replyToShouldTerminate(bool shouldTerminate) override
    {
        [NSApp replyToApplicationShouldTerminate:shouldTerminate];
    }

private:
    SentrelApplicationDelegate* const delegate_;
};

/// Remote notifications of the shared application.
class MacRemoteNotifications final : public ports::RemoteNotifications {
public:
    explicit MacRemoteNotifications(SentrelApplicationDelegate* delegate) : delegate_(delegate) {}

    void setReceiver(Receiver receiver) override { delegate_->pushed = std::move(receiver); }
    void registerForRemoteNotifications() override { [NSApp registerForRemoteNotifications]; }
    [[nodiscard]] std::optional<ports::CloudNotification> cloudNotification(const Json& userInfo) override
    {
        return cloudNotificationOf(dictionaryObject(userInfo));
    }

private:
    SentrelApplicationDelegate* const delegate_;
};

/// The shared panel of Quick Look. It takes a data source only from its controller: a source set earlier waits until
/// the application has control.
class MacPreviewPanel final : public ports::PreviewPanel {
public:
    explicit MacPreviewPanel(SentrelApplicationDelegate* delegate) : delegate_(delegate), source_(delegate->source) {}
    ~MacPreviewPanel() override { show(nullptr); }
    MacPreviewPanel(const MacPreviewPanel&) = delete;

    void setControl(ports::PreviewPanelControl control) override { delegate_->previewing = std::move(control); }
    void setDataSource(ports::PreviewDataSource* source) override { show(source); }
    void reloadData() override { [source_->controlled reloadData]; }
    void makeKeyAndOrderFront() override { [QLPreviewPanel.sharedPreviewPanel makeKeyAndOrderFront:nil]; }

private:
    void show(ports::PreviewDataSource* source)
    {
        source_->offered = source;
        source_->controlled.dataSource = source == nullptr ? nil : source_;
    }

    SentrelApplicationDelegate* const delegate_;
    SentrelPreviewSource* const source_;
};

} // namespace

ApplicationPorts sentrel::mac::makeApplication()
{
    SentrelApplicationDelegate* const delegate = [[SentrelApplicationDelegate alloc] init];
    delegate->source = [[SentrelPreviewSource alloc] init];
    return {std::make_unique<MacApplication>(delegate), std::make_unique<MacRemoteNotifications>(delegate),
            std::make_unique<MacPreviewPanel>(delegate)};
}

void sentrel::mac::runApplication()
{
    [NSApp run];
}
