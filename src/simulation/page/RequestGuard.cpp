#include "simulation/page/RequestGuard.hpp"

#include <openssl/crypto.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

/// Requests per second; far more than a person with a dragged slider sends.
constexpr double mostPerSecond = 200.0;

bool isSame(std::string_view left, std::string_view right)
{
    return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

/// The value of a cookie, given as "name=", among all of the request's.
std::string_view valueOf(std::string_view name, std::string_view cookies)
{
    while (!cookies.empty()) {
        const auto end = std::min(cookies.find(';'), cookies.size());
        std::string_view cookie = cookies.substr(0, end);
        cookie.remove_prefix(std::min(cookie.find_first_not_of(' '), cookie.size()));
        if (cookie.starts_with(name)) {
            return cookie.substr(name.size());
        }
        cookies.remove_prefix(std::min(end + 1, cookies.size()));
    }
    return {};
}

} // namespace

RequestGuard::RequestGuard(std::string token, int port)
    : token_(std::move(token)),
      port_(std::to_string(port)),
      cookieName_("sentrel-" + port_ + "="),
      allowance_(mostPerSecond),
      refilled_(std::chrono::steady_clock::now())
{
}

bool RequestGuard::isOurHost(const std::string& host) const
{
    // Other names for this address are refused: they would admit another site's page (DNS rebinding).
    return host == "127.0.0.1:" + port_ || host == "localhost:" + port_;
}

bool RequestGuard::isWithinRate()
{
    const std::lock_guard guard{mutex_};
    const auto now = std::chrono::steady_clock::now();
    const double passed = std::chrono::duration<double>(now - refilled_).count();
    refilled_ = now;
    allowance_ = std::min(mostPerSecond, allowance_ + passed * mostPerSecond);
    if (allowance_ < 1.0) {
        return false;
    }
    allowance_ -= 1.0;
    return true;
}

bool RequestGuard::isInvitation(const Request& request) const
{
    return isSame(request.token, token_);
}

std::optional<RequestGuard::Refusal> RequestGuard::refusal(const Request& request)
{
    if (!isOurHost(request.host)) {
        return Refusal{403, "This is not the address of the simulated MacBook."};
    }
    if (request.method != "GET" && request.method != "POST") {
        return Refusal{405, "Only GET and POST are answered."};
    }
    const bool isOurOrigin = request.origin == "http://" + request.host;
    if ((!request.origin.empty() && !isOurOrigin) || (request.method == "POST" && !isOurOrigin)) {
        return Refusal{403, "The request comes from another page."};
    }
    if (!isSame(valueOf(cookieName_, request.cookie), token_)) {
        return Refusal{403, "Open the address that the program has printed: it carries this run's token."};
    }
    // Last, so that only valid requests use up the allowance.
    if (!isWithinRate()) {
        return Refusal{429, "Too many requests at once."};
    }
    return std::nullopt;
}

std::string RequestGuard::cookieHeader() const
{
    return cookieName_ + token_ + "; Path=/; HttpOnly; SameSite=Strict";
}

} // namespace sentrel::simulation
