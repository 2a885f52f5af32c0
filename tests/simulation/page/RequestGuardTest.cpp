#include "simulation/page/RequestGuard.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

int statusFor(RequestGuard& guard, const RequestGuard::Request& request)
{
    const auto refusal = guard.refusal(request);
    return refusal ? refusal->status : 200;
}

TEST(RequestGuard, LetsInOnlyOurPageAndWhoeverKnowsTheToken)
{
    RequestGuard guard{"secret", 8080};
    const std::string host = "127.0.0.1:8080";
    const std::string origin = "http://127.0.0.1:8080";
    const std::string cookie = "sentrel-8080=secret";
    const struct {
        const char* what;
        RequestGuard::Request request;
        int status;
    } cases[] = {
        {"a page of ours", {"GET", host, "", "theme=dark; sentrel-8080=secret", ""}, 200},
        {"an action of ours", {"POST", host, origin, cookie, ""}, 200},
        {"the other name of loopback", {"POST", "localhost:8080", "http://localhost:8080", cookie, ""}, 200},
        {"no token", {"GET", host, "", "", ""}, 403},
        {"a wrong token", {"GET", host, "", "sentrel-8080=secreT", ""}, 403},
        {"half a token", {"GET", host, "", "sentrel-8080=sec", ""}, 403},
        {"a token under another name", {"GET", host, "", "xsentrel-8080=secret", ""}, 403},
        {"another page's action", {"POST", host, "http://evil.example", cookie, ""}, 403},
        {"an action from nowhere", {"POST", host, "", cookie, ""}, 403},
        {"another page reading", {"GET", host, "null", cookie, ""}, 403},
        {"a name that was pointed here", {"GET", "evil.example:8080", "", cookie, ""}, 403},
        {"another port", {"GET", "127.0.0.1:80", "", cookie, ""}, 403},
        {"another method", {"DELETE", host, origin, cookie, ""}, 405},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(statusFor(guard, each.request), each.status) << each.what;
    }
    EXPECT_TRUE(guard.isInvitation({"GET", host, "", "", "secret"}));
    EXPECT_FALSE(guard.isInvitation({"GET", host, "", "", ""}));
}

} // namespace
} // namespace sentrel::simulation
