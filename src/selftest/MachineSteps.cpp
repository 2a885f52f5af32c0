#include "ports/DeviceRegistry.hpp"
#include "ports/HidEventSystem.hpp"
#include "ports/HostInfo.hpp"
#include "ports/PowerSources.hpp"
#include "ports/SystemConstants.hpp"
#include "ports/Windows.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Sleep.hpp"
#include "selftest/Steps.hpp"

#include <array>
#include <atomic>
#include <cmath>
#include <cstdio>

namespace sentrel::selftest {

namespace {

using namespace std::chrono_literals;

constexpr std::int64_t reportInterval = 20'000; // microseconds, as the product asks for

/// Samples of the accelerometer, counted on its queue.
struct Samples {
    std::atomic<int> count = 0;
    std::atomic<double> strength = 0.0; ///< of the last one, in g
};

void count(Samples& samples, const ports::HidEvent* event)
{
    if (event == nullptr || event->type() != ports::accelerometerEvent) {
        return;
    }
    const double x = event->floatValue(ports::accelerometerFieldX);
    const double y = event->floatValue(ports::accelerometerFieldY);
    const double z = event->floatValue(ports::accelerometerFieldZ);
    samples.strength = std::sqrt(x * x + y * y + z * z);
    ++samples.count;
}

} // namespace

Async<Outcome> checkComputer(const Bench& bench)
{
    ports::HostInfo& host = bench.platform.host;
    const auto model = host.systemControlText("hw.model");
    if (!model || model->empty()) {
        co_return Outcome{Verdict::fail, "the system doesn't tell its model"};
    }
    std::string fact = *model;
    if (const auto product = host.registryData("IODeviceTree:/product", "product-name")) {
        const std::string name{product->begin(), product->end()};
        fact += ", " + name.substr(0, name.find('\0'));
    }
    fact += ", macOS " + host.systemControlText("kern.osproductversion").value_or("of an unknown version");
    const bool isMacBook = fact.find("MacBook") != std::string::npos;
    co_return Outcome{isMacBook ? Verdict::pass : Verdict::fail, fact};
}

Async<Outcome> checkSystemTexts(const Bench& bench)
{
    if (bench.differingTexts.empty()) {
        co_return Outcome{Verdict::pass, "as the product has them"};
    }
    std::string fact;
    for (const std::string& text : bench.differingTexts) {
        fact += (fact.empty() ? "" : "; ") + text;
    }
    co_return Outcome{Verdict::fail, fact};
}

Async<Outcome> checkPower(const Bench& bench)
{
    const auto snapshot = bench.platform.powerSources.copySnapshot();
    const auto sources = snapshot == nullptr ? std::nullopt : snapshot->count();
    if (!sources) {
        co_return Outcome{Verdict::fail, "the system lists no power sources"};
    }
    for (std::size_t source = 0; source < *sources; ++source) {
        if (const auto state = snapshot->text(source, ports::powerSourceStateKey)) {
            co_return Outcome{Verdict::pass, *state};
        }
    }
    co_return Outcome{Verdict::ask, "no source tells its state"};
}

Async<Outcome> checkLid(const Bench& bench)
{
    const auto state = bench.platform.deviceRegistry.number(ports::rootDomainClass, ports::clamshellStateKey);
    if (!state) {
        co_return Outcome{Verdict::fail, "the system knows of no lid"};
    }
    co_return *state == 0 ? Outcome{Verdict::pass, "open"} : Outcome{Verdict::ask, "closed"};
}

Async<Outcome> checkMotion(const Bench& bench)
{
    const auto client = bench.platform.hidEvents.createClient();
    if (client == nullptr) {
        co_return Outcome{Verdict::fail, "the system makes no client for its sensors"};
    }
    client->setMatching(
        {{ports::primaryUsagePageKey, ports::appleVendorPage}, {ports::primaryUsageKey, ports::accelerometerUsage}});
    const auto services = client->copyServices();
    if (!services || services->empty()) {
        co_return Outcome{Verdict::fail, "no accelerometer can be read"};
    }
    bool isAsked = true;
    for (const auto& service : *services) {
        isAsked = service->setProperty(ports::reportIntervalKey, reportInterval) && isAsked;
    }
    const auto samples = std::make_shared<Samples>();
    SerialQueue queue{bench.platform.scheduler, "pelma.Sentrel.selftest.motion", QualityOfService::standard};
    client->registerEventCallback([samples](const ports::HidEvent* event) { count(*samples, event); });
    client->schedule(queue);
    co_await sleepFor(1s);
    client->unschedule(queue);
    client->unregisterEventCallback();
    queue.close();
    if (samples->count == 0) {
        co_return Outcome{Verdict::fail, "an accelerometer is there, but gives no sample in a second"};
    }
    std::array<char, 96> fact{};
    std::snprintf(fact.data(), fact.size(), "%d samples in a second, the last of %.2f g%s", samples->count.load(),
                  samples->strength.load(), isAsked ? "" : "; the interval was refused");
    co_return Outcome{Verdict::pass, fact.data()};
}

Async<Outcome> checkScreens(const Bench& bench)
{
    const auto screens = bench.platform.windows.screens();
    if (screens.empty()) {
        co_return Outcome{Verdict::fail, "no screen"};
    }
    const auto level = bench.platform.windows.shieldingLevel();
    co_return Outcome{Verdict::pass, std::to_string(screens.size()) + ", shielded at level " + std::to_string(level)};
}

} // namespace sentrel::selftest
