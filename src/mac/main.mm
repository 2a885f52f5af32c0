#include "app/SentrelApp.hpp"
#include "mac/MacPlatform.hpp"

int main()
{
    @autoreleasepool {
        sentrel::mac::MacPlatform mac{sentrel::CloudKitService::containerIdentifier};
        const sentrel::SentrelApp app{mac.ports()};
        mac.application().run();
    }
    return 0;
}
