#include "conformance/Suite.hpp"
#include "ports/HostInfo.hpp"
#include "ports/Journal.hpp"
#include "ports/NetworkPath.hpp"
#include "runtime/SerialQueue.hpp"

#include <atomic>
#include <chrono>
#include <limits>

namespace sentrel::conformance {

using namespace std::chrono_literals;

void checkLog(const Subject& subject, Report& report)
{
    // Odd values must cost the caller neither an exception nor its time.
    const Instant start = subject.platform.scheduler.now();
    const std::string endless(100'000, 'x');
    for (const std::string_view text : {std::string_view{""}, std::string_view{"a\0b\n\"\\%s%n", 10},
                                        std::string_view{"\xff\xfe half a \xe2\x82"}, std::string_view{endless}}) {
        subject.platform.journal.passOn("conformance", {{"text", text},
                                                        {"none", std::monostate{}},
                                                        {"flag", true},
                                                        {"number", std::numeric_limits<std::int64_t>::min()},
                                                        {"odd", std::numeric_limits<double>::quiet_NaN()}});
    }
    subject.platform.journal.passOn("", {});
    const double seconds = toSeconds(subject.platform.scheduler.now() - start);
    report.expect(seconds < 1.0, "notes take no time to speak of", std::to_string(seconds) + " s");
}

void checkHost(const Subject& subject, Report& report)
{
    ports::HostInfo& host = subject.platform.host;
    const std::string model = host.systemControlText("hw.model").value_or("none");
    report.expect(model != "none" && !model.empty() && model.find('\0') == std::string::npos, "the Mac knows its model",
                  model);
    report.expect(!host.systemControlText("hw.no-such-name"), "an unknown name has no text");
    report.expect(!host.registryData("IODeviceTree:/no-such-entry", "model"), "an unknown entry has no data");
    report.expect(!host.localizedName().value_or("").empty(), "the Mac has a name");
    const auto support = host.applicationSupportDirectory();
    report.expect(support && support->is_absolute(), "there is a folder for applications' files");
    report.expect(host.temporaryDirectory().is_absolute(), "there is a temporary folder");
}

void checkNetworkPath(const Subject& subject, Report& report)
{
    // Shared with callbacks, of which none may come late.
    struct Heard {
        std::atomic<int> calls = 0;
        std::atomic<int> status = -1;
        std::atomic<bool> isOnQueue = true;
    };
    const auto heard = std::make_shared<Heard>();
    SerialQueue queue{subject.platform.scheduler, "conformance.path", QualityOfService::utility};
    auto registration = subject.platform.networkPaths.monitor(queue, [&queue, heard](ports::NetworkPathStatus status) {
        heard->status = static_cast<int>(status);
        heard->isOnQueue = heard->isOnQueue && queue.isCurrent();
        ++heard->calls;
    });
    report.expect(registration != nullptr, "a monitor is made");
    report.expect(
        waitFor(subject.pass, [&] { return heard->calls > 0; }, 5s), "the present path is told without a change");
    report.expect(heard->isOnQueue, "it is told on the queue");
    report.expect(heard->status >= 0 && heard->status <= 3, "the status is one of four", std::to_string(heard->status));
    registration.reset();
    const int before = heard->calls;
    subject.pass(50ms);
    report.expect(heard->calls == before, "nothing is told once the registration has ended");
}

} // namespace sentrel::conformance
