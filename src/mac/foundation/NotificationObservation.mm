#include "mac/foundation/NotificationObservation.hpp"

#include "mac/foundation/FoundationText.hpp"

#include <memory>
#include <utility>

namespace sentrel::mac {

namespace {

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
                                      // A copy, because the callback may end the registration.
                                      if (const auto callback = *target) {
                                          callback();
                                      }
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

} // namespace

ports::RegistrationPtr observeNotification(NSNotificationCenter* center, const std::string& name,
                                           std::function<void()> received)
{
    return std::make_unique<Observation>(center, name, std::move(received));
}

} // namespace sentrel::mac
