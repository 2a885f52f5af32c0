#include "mac/Adapters.hpp"

#include "mac/foundation/CallCopy.hpp"
#include "mac/foundation/FoundationValues.hpp"
#include "mac/foundation/Guarded.hpp"

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

#include <memory>
#include <utility>

namespace sentrel::mac {

namespace {

/// Observes the notifications of a name at the center, on the main queue. Registrations end on the main thread, too.
class Observation final : public ports::Registration {
public:
    Observation(NSNotificationCenter* center, const std::string& name, std::function<void()> received)
        : center_(center), received_(std::make_shared<std::function<void()>>(std::move(received)))
    {
        const std::shared_ptr<std::function<void()>> target = received_;
        token_ = [center_ addObserverForName:stringObject(name)
                                      object:nil
                                       queue:NSOperationQueue.mainQueue
                                  usingBlock:^(NSNotification*) {
                                      callCopy(*target); // it may end the registration
                                  }];
    }

    ~Observation() override
    {
        [center_ removeObserver:token_];
        // Drops a notification that already waits in the main queue.
        *received_ = nullptr;
    }

private:
    NSNotificationCenter* center_;
    std::shared_ptr<std::function<void()>> received_;
    id token_ = nil;
};

/// The notifications of a center.
template <class Port> class MacNotifications final : public Port {
public:
    explicit MacNotifications(NSNotificationCenter* center) : center_(center) {}

    [[nodiscard]] ports::RegistrationPtr observe(const std::string& name, std::function<void()> received) override
    {
        return std::make_unique<Observation>(center_, name, std::move(received));
    }

private:
    NSNotificationCenter* const center_;
};

/// The shared application object.
class MacApplicationActivation final : public ports::ApplicationActivation {
public:
    void activate(bool ignoringOtherApplications) override
    {
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations" // the successor can't ignore others
        [NSApp activateIgnoringOtherApps:ignoringOtherApplications];
#pragma clang diagnostic pop
    }

    bool setPresentationOptions(std::uint64_t options) override
    {
        // Raises for an impossible combination.
        return guarded("setPresentationOptions",
                       [&] { NSApp.presentationOptions = static_cast<NSApplicationPresentationOptions>(options); });
    }
};

std::optional<std::string> failure(bool hasWorked, NSError* error)
{
    return hasWorked ? std::nullopt : std::optional{textOf(error.localizedDescription)};
}

/// The main application's login item.
class MacLoginItem final : public ports::LoginItem {
public:
    [[nodiscard]] std::int64_t status() override { return SMAppService.mainAppService.status; }

    [[nodiscard]] std::optional<std::string> registerItem() override
    {
        NSError* error = nil;
        const bool hasWorked = [SMAppService.mainAppService registerAndReturnError:&error];
        return failure(hasWorked, error);
    }

    [[nodiscard]] std::optional<std::string> unregisterItem() override
    {
        NSError* error = nil;
        const bool hasWorked = [SMAppService.mainAppService unregisterAndReturnError:&error];
        return failure(hasWorked, error);
    }
};

} // namespace

std::unique_ptr<ports::ApplicationNotifications> makeApplicationNotifications()
{
    return std::make_unique<MacNotifications<ports::ApplicationNotifications>>(NSNotificationCenter.defaultCenter);
}

std::unique_ptr<ports::WorkspaceNotifications> makeWorkspaceNotifications()
{
    return std::make_unique<MacNotifications<ports::WorkspaceNotifications>>(
        NSWorkspace.sharedWorkspace.notificationCenter);
}

std::unique_ptr<ports::ApplicationActivation> makeApplicationActivation()
{
    return std::make_unique<MacApplicationActivation>();
}

std::unique_ptr<ports::LoginItem> makeLoginItem()
{
    return std::make_unique<MacLoginItem>();
}

} // namespace sentrel::mac
