#include "platform/macos/MacWorkspaceNotifications.hpp"

#include "platform/macos/FoundationText.hpp"

#import <AppKit/AppKit.h>

#include <utility>

namespace sentrel::macos {

namespace {

class Observation final : public platform::Registration {
public:
    Observation(const std::string& name, std::function<void()> received)
        : received_(std::make_shared<std::function<void()>>(std::move(received)))
    {
        const std::shared_ptr<std::function<void()>> target = received_;
        token_ = [NSWorkspace.sharedWorkspace.notificationCenter addObserverForName:stringObject(name)
                                                                             object:nil
                                                                              queue:NSOperationQueue.mainQueue
                                                                         usingBlock:^(NSNotification*) {
                                                                             // A copy, because the callback may end the
                                                                             // registration.
                                                                             if (const auto callback = *target) {
                                                                                 callback();
                                                                             }
                                                                         }];
    }

    ~Observation() override
    {
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:token_];
        // A notification may be waiting in the main queue already: it finds nobody.
        *received_ = nullptr;
    }

private:
    std::shared_ptr<std::function<void()>> received_;
    id token_ = nil;
};

} // namespace

platform::RegistrationPtr MacWorkspaceNotifications::observe(const std::string& name, std::function<void()> received)
{
    return std::make_unique<Observation>(name, std::move(received));
}

} // namespace sentrel::macos
