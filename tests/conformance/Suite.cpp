#include "conformance/Suite.hpp"

#include "ports/CloudError.hpp"

namespace sentrel::conformance {

using namespace std::chrono_literals;

void Report::expectCloudError(int code, const std::string& promise, const std::function<void()>& call)
{
    try {
        call();
        expect(false, promise, "no error");
    } catch (const ports::CloudError& error) {
        expect(error.code == code, promise, "code " + std::to_string(error.code));
    }
}

bool waitFor(const Passing& pass, const std::function<bool()>& condition, Duration limit)
{
    constexpr Duration step = 5ms;
    for (Duration waited{}; waited < limit; waited += step) {
        if (condition()) {
            return true;
        }
        pass(step);
    }
    return condition();
}

const std::vector<Suite>& suites()
{
    static const std::vector<Suite> all{
        {"scheduler", [](const Subject& subject,
                         Report& report) { checkScheduler(subject.platform.scheduler, subject.pass, report); }},
        {"defaults", checkDefaults},
        {"files", checkFiles},
        {"cryptography", checkCryptography},
        {"random", checkRandom},
        {"image codec", checkImageCodec},
        {"calendar", checkCalendar},
        {"language", checkLanguage},
        {"log", checkLog},
        {"host", checkHost},
        {"network path", checkNetworkPath},
        {"records", checkRecords},
        {"windows", checkWindows},
    };
    return all;
}

} // namespace sentrel::conformance
