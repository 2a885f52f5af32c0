#include "app/SentrelApp.hpp"
#include "platform/macos/MacPlatform.hpp"

int main()
{
    @autoreleasepool {
        sentrel::macos::MacPlatform mac{sentrel::CloudKitService::containerIdentifier};
        sentrel::SentrelApp app{mac.ports()};
        sentrel::platform::ApplicationDelegate delegate;
        delegate.didFinishLaunching = [&app] { app.launch(); };
        delegate.willTerminate = [&app] { app.terminate(); };
        mac.application().setDelegate(std::move(delegate));
        mac.application().setActivationPolicy(NSApplicationActivationPolicyAccessory);
        mac.application().run();
    }
    return 0;
}
