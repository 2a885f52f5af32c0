#include "app/SentrelApp.hpp"
#include "platform/macos/MacPlatform.hpp"

int main()
{
    @autoreleasepool {
        sentrel::macos::MacPlatform mac{sentrel::CloudKitService::containerIdentifier};
        const sentrel::SentrelApp app{mac.ports()};
        mac.application().run();
    }
    return 0;
}
