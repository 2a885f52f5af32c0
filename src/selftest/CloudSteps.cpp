#include "ports/CloudAccount.hpp"
#include "ports/CloudConstants.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/NetworkPath.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/SerialQueue.hpp"
#include "selftest/Steps.hpp"

#include <array>
#include <atomic>
#include <memory>

namespace sentrel::selftest {

namespace {

constexpr const char* recordName = "sentrel-selftest";
constexpr const char* recordType = "AlertEvent";

/// The network's state, shared with its callback.
struct Path {
    Semaphore told;
    std::atomic<ports::NetworkPathStatus> status = ports::NetworkPathStatus::invalid;
};

std::string textOf(const ports::CloudError& error)
{
    return error.domain + " " + std::to_string(error.code) + ": " + error.description;
}

/// A build without the entitlement can't use iCloud; only its maker knows whether it should.
Outcome outcomeOf(const ports::CloudError& error)
{
    const bool isUnsigned = error.code == CloudErrorCode::missingEntitlement;
    return {isUnsigned ? Verdict::ask : Verdict::fail, textOf(error)};
}

/// An alert that the phone neither announces nor can read: it has no time.
ports::CloudRecord sample()
{
    ports::CloudRecord record;
    record.type = recordType;
    record.name = recordName;
    record.fields = {{"deviceName", std::string{"self-test"}}, {"sendNotification", std::int64_t{0}}};
    return record;
}

Async<std::string> saveReadAndDelete(ports::CloudDatabase& database)
{
    const std::vector<ports::CloudRecord> noRecords;
    const std::vector<std::string> noNames;
    std::vector<ports::CloudRecord> records;
    records.push_back(sample());
    const auto saved = co_await database.modify(records, noNames, ports::CloudSavePolicy::allKeys, false);
    const auto result = saved.saved.find(recordName);
    if (result == saved.saved.end()) {
        co_return std::string{"no answer for the record"};
    }
    if (const auto* const error = std::get_if<ports::CloudError>(&result->second)) {
        throw *error;
    }
    const auto read = co_await database.record(recordName);
    std::vector<std::string> names;
    names.emplace_back(recordName);
    co_await database.modify(noRecords, names, ports::CloudSavePolicy::ifServerRecordUnchanged, false);
    const auto* const text = ports::fieldOf<std::string>(read, "deviceName");
    co_return text != nullptr && *text == "self-test" ? std::string{} : std::string{"the record came back changed"};
}

} // namespace

Async<Outcome> checkNetwork(const Bench& bench)
{
    constexpr std::array names{"invalid", "there", "not there", "there on demand"};
    SerialQueue queue{bench.platform.scheduler, "pelma.Sentrel.selftest.path", QualityOfService::utility};
    const auto path = std::make_shared<Path>();
    const auto registration = bench.platform.networkPaths.monitor(queue, [path](ports::NetworkPathStatus status) {
        path->status = status;
        path->told.signal();
    });
    co_await path->told.wait();
    const ports::NetworkPathStatus status = path->status;
    const bool isThere = status == ports::NetworkPathStatus::satisfied;
    co_return Outcome{isThere ? Verdict::pass : Verdict::ask, names.at(static_cast<std::size_t>(status))};
}

Async<Outcome> checkCloudAccount(const Bench& bench)
{
    constexpr std::array names{"could not be determined", "available", "restricted", "no account",
                               "temporarily unavailable"};
    try {
        const auto status = co_await bench.platform.cloudAccount.accountStatus();
        const bool isAvailable = status == ports::CloudAccountStatus::available;
        co_return Outcome{isAvailable ? Verdict::pass : Verdict::ask, names.at(static_cast<std::size_t>(status))};
    } catch (const ports::CloudError& error) {
        co_return outcomeOf(error);
    }
}

Async<Outcome> checkCloudRecord(const Bench& bench)
{
    try {
        const std::string failure = co_await saveReadAndDelete(bench.platform.cloudDatabase);
        co_return failure.empty() ? Outcome{Verdict::pass, "saved, read and deleted"} : Outcome{Verdict::fail, failure};
    } catch (const ports::CloudError& error) {
        co_return outcomeOf(error);
    }
}

} // namespace sentrel::selftest
