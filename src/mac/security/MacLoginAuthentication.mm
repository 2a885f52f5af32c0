#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"

#import <LocalAuthentication/LocalAuthentication.h>

#include <utility>

namespace sentrel::mac {

namespace {

class MacLoginContext final : public ports::LoginContext {
public:
    MacLoginContext() = default;
    ~MacLoginContext() override { [context_ invalidate]; }
    MacLoginContext(const MacLoginContext&) = delete;

    void setLocalizedReason(const std::string& reason) override { context_.localizedReason = stringObject(reason); }

    [[nodiscard]] Evaluability canEvaluatePolicy(std::int64_t policy) override
    {
        NSError* error = nil;
        const bool canEvaluate = [context_ canEvaluatePolicy:static_cast<LAPolicy>(policy) error:&error];
        return {canEvaluate, optionalText(error.localizedDescription)};
    }

    void evaluatePolicy(std::int64_t policy, const std::string& reason, std::function<void(bool)> reply) override
    {
        const auto answer = std::move(reply);
        [context_ evaluatePolicy:static_cast<LAPolicy>(policy)
                 localizedReason:stringObject(reason)
                           reply:^(BOOL succeeded, NSError* /*error*/) {
                               answer(succeeded);
                           }];
    }

private:
    LAContext* const context_ = [[LAContext alloc] init];
};

/// Requests to the LocalAuthentication framework.
class MacLoginAuthentication final : public ports::LoginAuthentication {
public:
    [[nodiscard]] std::unique_ptr<ports::LoginContext> makeContext() override
    {
        return std::make_unique<MacLoginContext>();
    }
};

} // namespace

std::unique_ptr<ports::LoginAuthentication> makeLoginAuthentication()
{
    return std::make_unique<MacLoginAuthentication>();
}

} // namespace sentrel::mac
