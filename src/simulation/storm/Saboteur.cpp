#include "simulation/storm/Saboteur.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::array<std::string_view, 12> cloudErrors{
    "networkUnavailable", "networkFailure", "serviceUnavailable", "requestRateLimited",
    "quotaExceeded",      "zoneBusy",       "notAuthenticated",   "serverRejectedRequest",
    "internalError",      "limitExceeded",  "unknownItem",        "partialFailure"};

constexpr std::array<std::string_view, 9> requests{"accountStatus", "userRecord", "query", "continueQuery",   "fetch",
                                                   "modify",        "fetchOne",   "save",  "saveSubscription"};

} // namespace

std::string Saboteur::nextFault()
{
    switch (dice_.below(4)) {
    case 0:
        return disturbCloud();
    case 1:
        return breakDevice();
    default:
        break;
    }
    const FaultPoint& point = dice_.oneOf(points_);
    return strike(point, dice_.oneOf(point.chances).calls);
}

std::vector<std::string> Saboteur::cures()
{
    std::ranges::sort(broken_);
    broken_.erase(std::unique(broken_.begin(), broken_.end()), broken_.end());
    std::vector<std::string> cures{"{fault: none}", "{icloud: {fail: none}}"};
    for (const std::string& port : std::exchange(broken_, {})) {
        cures.push_back("{fail: {" + port + ": none}}");
    }
    return cures;
}

std::string Saboteur::strike(const FaultPoint& point, std::uint32_t calls)
{
    const bool isHarmless = point.fault != "hangs" && point.fault != "dies" && point.fault != "loses-power";
    mustRelaunch = mustRelaunch || !isHarmless;
    if (point.operation.empty()) {
        broken_.push_back(point.port);
        const std::string times = isHarmless ? std::to_string(dice_.spread(1, 30)) : "1";
        return "{fail: {" + point.port + ": {" + point.fault + ": " + times + "}}}";
    }
    // Early calls are the likelier ones to be made again.
    const std::int64_t call = dice_.spread(1, std::int64_t{calls} + 1);
    return "{fault: {port: " + point.port + ", operation: " + point.operation + ", call: " + std::to_string(call) +
           ", fate: " + point.fault + "}}";
}

std::string Saboteur::breakDevice()
{
    const FaultyPort& port = dice_.oneOf(ports_);
    const std::string fault = dice_.oneOf(port.faults);
    const bool hangs = fault == "hangs";
    mustRelaunch = mustRelaunch || hangs;
    broken_.push_back(port.name);
    const std::string times = hangs ? "1" : std::to_string(dice_.spread(1, 30));
    return "{fail: {" + port.name + ": {" + fault + ": " + times + "}}}";
}

std::string Saboteur::disturbCloud()
{
    const std::string operation =
        dice_.chance(50) ? ", operation: " + std::string{dice_.oneOf(requests)} : std::string{};
    // The polls for commands make a request every five seconds: some troubles outlast many retries.
    const std::string times = std::to_string(dice_.chance(75) ? dice_.between(1, 4) : dice_.spread(5, 400));
    if (dice_.chance(30)) {
        return "{icloud: {loseAnswers: {times: " + times + operation + "}}}";
    }
    const std::string patience =
        dice_.chance(20) ? ", retryAfter: " + std::to_string(dice_.between(1, 200)) : std::string{};
    return "{icloud: {fail: {code: " + std::string{dice_.oneOf(cloudErrors)} + ", times: " + times + operation +
           patience + "}}}";
}

} // namespace sentrel::simulation
