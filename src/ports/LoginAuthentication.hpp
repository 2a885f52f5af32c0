#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace sentrel::ports {

/// One authentication request (`LAContext`). The destructor invalidates it: its panel closes, and a pending reply comes
/// as a failure. Main thread.
class LoginContext {
public:
    virtual ~LoginContext() = default;

    virtual void setLocalizedReason(const std::string& reason) = 0;

    struct Evaluability {
        bool canEvaluate = false;
        std::optional<std::string> errorDescription; ///< the error's `localizedDescription`; none without an error
    };

    /// `canEvaluatePolicy:error:`.
    [[nodiscard]] virtual Evaluability canEvaluatePolicy(std::int64_t policy) = 0;

    /// `evaluatePolicy:localizedReason:reply:`. The reply comes once, on any thread, with the success flag.
    virtual void evaluatePolicy(std::int64_t policy, const std::string& reason, std::function<void(bool)> reply) = 0;
};

/// Makes authentication requests. Main thread.
class LoginAuthentication {
public:
    virtual ~LoginAuthentication() = default;
    [[nodiscard]] virtual std::unique_ptr<LoginContext> makeContext() = 0;
};

} // namespace sentrel::ports
