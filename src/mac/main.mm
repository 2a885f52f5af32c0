#include "app/SentrelApp.hpp"
#include "mac/MacPlatform.hpp"
#include "mac/foundation/SdkConstants.hpp"

#include <os/log.h>

int main()
{
    @autoreleasepool {
        // A text that the frameworks have changed silences what depends on it: a missed notification, a refused type.
        for (const std::string& difference : sentrel::mac::differingSdkTexts()) {
            os_log_fault(OS_LOG_DEFAULT, "not as the system has it: %{public}s", difference.c_str());
        }
        sentrel::mac::MacPlatform mac{sentrel::CloudKitService::containerIdentifier};
        const sentrel::SentrelApp app{mac.ports()};
        sentrel::mac::runApplication();
    }
    return 0;
}
