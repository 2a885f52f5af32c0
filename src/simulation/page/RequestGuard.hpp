#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

namespace sentrel::simulation {

/// Admits only requests with the run's token and from the run's own page. Any thread.
class RequestGuard {
public:
    /// The parts of a request that matter here; missing headers are empty.
    struct Request {
        std::string method;
        std::string host;
        std::string origin;
        std::string cookie;
        std::string token; ///< in the address
    };
    struct Refusal {
        int status = 403;
        const char* why = "";
    };

    RequestGuard(std::string token, int port);

    /// Why the request is refused; none if it may pass.
    [[nodiscard]] std::optional<Refusal> refusal(const Request& request);

    /// Whether the token from the address is the run's.
    [[nodiscard]] bool isInvitation(const Request& request) const;

    /// The header that makes the browser remember the token.
    [[nodiscard]] std::string cookieHeader() const;

private:
    [[nodiscard]] bool isOurHost(const std::string& host) const;
    [[nodiscard]] bool isWithinRate();

    const std::string token_;
    const std::string port_;
    const std::string cookieName_; // browsers share cookies between a host's ports; two runs must not
    std::mutex mutex_;
    double allowance_;
    std::chrono::steady_clock::time_point refilled_;
};

} // namespace sentrel::simulation
