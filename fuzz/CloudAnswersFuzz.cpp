#include "Doubles.hpp"
#include "MemoryFiles.hpp"
#include "Require.hpp"
#include "cloud/AlertRecord.hpp"
#include "cloud/CloudErrors.hpp"
#include "cloud/CloudKitService.hpp"
#include "cloud/DeviceCatalog.hpp"
#include "cloud/MacPresenceService.hpp"
#include "cloud/RecordText.hpp"
#include "core/SettingsStore.hpp"
#include "ports/CloudAccount.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/Language.hpp"
#include "ports/Random.hpp"
#include "ports/RemoteNotifications.hpp"
#include "ports/WallClock.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/mac/files/DefaultsFile.hpp"

#include <array>
#include <chrono>
#include <cmath>
#include <fuzzer/FuzzedDataProvider.h>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

// A Mac whose iCloud answers anything: records with any fields, errors, late answers and pushes, all drawn from the
// input, as are the requests.

namespace sentrel::fuzz {
namespace {

using namespace std::chrono_literals;

constexpr int mostSteps = 12;
constexpr int mostAlerts = 6;
constexpr std::array fieldNames{"reason",          "timestamp",       "deviceName",        "sendNotification",
                                "photo",           "alertIDs",        "isTruncated",       "deviceIDs",
                                "deviceID",        "lastSeen",        "isCompatible",      "isArmed",
                                "commandSequence", "commandIssuedAt", "requestedArmState", "triggerName"};
constexpr std::array errorCodes{1, 2, 3, 4, 6, 7, 9, 11, 14, 15, 20, 23, 25, 26, 27, 28, 34, 36, 112, -1};

UUID alertID(int number)
{
    UUID::Octets octets{};
    octets[15] = static_cast<std::uint8_t>(number);
    return UUID{octets};
}

/// Draws the answers from the input.
class Source {
public:
    explicit Source(FuzzedDataProvider& input, ports::WallClock& wallClock) : input_(input), wallClock_(wallClock) {}

    [[nodiscard]] bool chance(int of) { return input_.ConsumeIntegralInRange(0, of - 1) == of - 1; }
    [[nodiscard]] int below(int end) { return input_.ConsumeIntegralInRange(0, end - 1); }
    [[nodiscard]] std::string recordName()
    {
        return chance(8) ? input_.ConsumeRandomLengthString(40) : alertID(below(mostAlerts)).text();
    }
    [[nodiscard]] Date date()
    {
        return chance(4) ? Date{input_.ConsumeFloatingPoint<double>()}
                         : wallClock_.now().addingSeconds(below(400) - 300);
    }
    [[nodiscard]] ports::CloudRecord record(const std::string& name)
    {
        ports::CloudRecord record;
        record.name = chance(16) ? recordName() : name;
        record.type = chance(16) ? input_.ConsumeRandomLengthString(16) : "AlertEvent";
        for (const char* const field : fieldNames) {
            if (!chance(8)) {
                record.fields[field] = chance(8) ? anyValue() : valueOf(field);
            }
        }
        return record;
    }
    [[nodiscard]] ports::CloudError error()
    {
        ports::CloudError error{chance(8) ? "NSURLErrorDomain" : ports::cloudErrorDomain,
                                errorCodes[static_cast<std::size_t>(below(errorCodes.size()))], "an error"};
        if (chance(4)) {
            error.retryAfter = input_.ConsumeFloatingPointInRange(-10.0, 1e6);
        }
        return error;
    }
    [[nodiscard]] ports::CloudRecordResult result(const std::string& name)
    {
        if (chance(6)) {
            return error();
        }
        return record(name);
    }
    /// How late an answer comes; longer than anybody waits, too.
    [[nodiscard]] Duration delay() { return chance(16) ? Duration{1min} : Duration{10ms * below(100)}; }

private:
    [[nodiscard]] ports::CloudValue valueOf(std::string_view field)
    {
        if (field == "reason") {
            return std::string{rawValue(allTriggerReasons[static_cast<std::size_t>(below(4))])};
        }
        if (field == "timestamp" || field == "lastSeen" || field == "commandIssuedAt") {
            return date();
        }
        if (field == "alertIDs" || field == "deviceIDs") {
            return names();
        }
        if (field == "photo") {
            return ports::CloudAsset{"/photo.jpg"};
        }
        if (field == "deviceName" || field == "triggerName" || field == "deviceID") {
            return input_.ConsumeRandomLengthString(300);
        }
        return std::int64_t{below(4)};
    }
    [[nodiscard]] ports::CloudValue anyValue()
    {
        switch (below(4)) {
        case 0:
            return input_.ConsumeRandomLengthString(40);
        case 1:
            return input_.ConsumeIntegral<std::int64_t>();
        case 2:
            return date();
        default:
            return names();
        }
    }
    [[nodiscard]] std::vector<std::string> names()
    {
        std::vector<std::string> names;
        for (int count = below(8); count > 0; --count) {
            names.push_back(recordName());
        }
        return names;
    }

    FuzzedDataProvider& input_;
    ports::WallClock& wallClock_;
};

class RunningClock final : public ports::WallClock {
public:
    explicit RunningClock(const VirtualClock& clock) : clock_(clock) {}
    [[nodiscard]] Date now() override
    {
        return Date{8e8}.addingSeconds(std::chrono::duration<double>(clock_.now().time_since_epoch()).count());
    }

private:
    const VirtualClock& clock_;
};

class AnyAccount final : public ports::CloudAccount {
public:
    explicit AnyAccount(Source& source) : source_(source) {}
    [[nodiscard]] Async<ports::CloudAccountStatus> accountStatus() override
    {
        if (source_.chance(16)) {
            throw source_.error();
        }
        co_return source_.chance(8) ? static_cast<ports::CloudAccountStatus>(source_.below(8))
                                    : ports::CloudAccountStatus::available;
    }
    [[nodiscard]] Async<std::optional<std::string>> userRecordName() override
    {
        if (source_.chance(8)) {
            co_return std::nullopt;
        }
        co_return source_.chance(8) ? "another" : "owner";
    }

private:
    Source& source_;
};

/// Remembers the commands that it gave.
class AnyDatabase final : public ports::CloudDatabase {
public:
    explicit AnyDatabase(Source& source) : source_(source) {}

    std::set<std::int64_t> commands;

    [[nodiscard]] Async<ports::CloudQueryPage> query(ports::CloudQuery /*query*/, ports::CloudDesiredKeys /*keys*/,
                                                     std::size_t /*limit*/) override
    {
        co_await begin();
        co_return page();
    }
    [[nodiscard]] Async<ports::CloudQueryPage> continueQuery(std::shared_ptr<const ports::CloudQueryCursor> /*cursor*/,
                                                             ports::CloudDesiredKeys /*keys*/,
                                                             std::size_t /*limit*/) override
    {
        co_await begin();
        co_return page();
    }
    [[nodiscard]] Async<std::map<std::string, ports::CloudRecordResult>>
    records(std::vector<std::string> names, ports::CloudDesiredKeys /*keys*/) override
    {
        co_await begin();
        std::map<std::string, ports::CloudRecordResult> results;
        for (const std::string& name : names) {
            if (!source_.chance(8)) {
                results.emplace(name, given(source_.result(name)));
            }
        }
        co_return results;
    }
    [[nodiscard]] Async<ports::CloudModification> modify(std::vector<ports::CloudRecord> save,
                                                         std::vector<std::string> deleteNames,
                                                         ports::CloudSavePolicy /*policy*/, bool /*isAtomic*/) override
    {
        co_await begin();
        ports::CloudModification done;
        for (const auto& record : save) {
            done.saved.emplace(record.name, source_.result(record.name));
        }
        for (const std::string& name : deleteNames) {
            if (!source_.chance(8)) {
                done.deleted.emplace(name, source_.chance(4) ? std::optional{source_.error()} : std::nullopt);
            }
        }
        co_return done;
    }
    [[nodiscard]] Async<ports::CloudRecord> record(std::string name) override
    {
        co_await begin();
        auto record = source_.record(name);
        note(record);
        co_return record;
    }
    [[nodiscard]] Async<ports::CloudRecord> save(ports::CloudRecord record) override
    {
        if (const auto* ids = ports::fieldOf<TextList>(record, AlertCatalog::alertIDsField);
            ids != nullptr && record.name == AlertCatalog::recordName) {
            require(ids->size() <= AlertCatalog::mostIdentifiers, "a catalog is saved that is too long");
        }
        co_await begin();
        co_return record;
    }
    [[nodiscard]] Async<void> saveSubscription(ports::CloudSubscription /*subscription*/) override { co_await begin(); }

private:
    class End final : public ports::CloudQueryCursor {};

    /// The answer's delay, and an error in its place.
    [[nodiscard]] Async<void> begin()
    {
        const Duration delay = source_.delay();
        co_await sleepFor(delay);
        if (source_.chance(8)) {
            throw source_.error();
        }
    }
    [[nodiscard]] ports::CloudQueryPage page()
    {
        ports::CloudQueryPage page;
        for (int count = source_.below(5); count > 0; --count) {
            const std::string name = source_.recordName();
            page.results.emplace_back(name, source_.result(name));
        }
        if (source_.chance(4)) {
            page.cursor = std::make_shared<End>();
        }
        return page;
    }
    void note(const ports::CloudRecord& record)
    {
        if (const auto command = commandOf(record)) {
            commands.insert(command->sequence);
        }
        // Presences are the phone's to read.
        if (const auto presence = presenceOf(record)) {
            require(std::isfinite(presence->lastSeen.secondsSinceReferenceDate), "a Mac was seen at no time");
            require(presence->deviceName.size() <= longestDeviceName, "a Mac has too long a name");
        }
    }
    ports::CloudRecordResult given(ports::CloudRecordResult result)
    {
        if (const auto* record = std::get_if<ports::CloudRecord>(&result)) {
            note(*record);
        }
        return result;
    }

    Source& source_;
};

class EnglishLanguage final : public ports::Language {
public:
    [[nodiscard]] std::string localized(std::string_view key) override { return std::string{key}; }
    [[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part) override
    {
        return text.find(part) != text.npos;
    }
    [[nodiscard]] std::size_t characterCount(std::string_view text) override { return text.size(); }
};

class CountingRandom final : public ports::GeneralRandom {
public:
    [[nodiscard]] std::uint8_t nextByte() override { return next_++; }

private:
    std::uint8_t next_ = 0;
};

/// As much of a Mac as talks to iCloud.
class Mac {
public:
    Mac(const std::uint8_t* data, std::size_t size) : input_(data, size) {}

    void live()
    {
        if (source_.chance(2)) {
            presence_.start();
        }
        for (int step = 0; step < mostSteps && input_.remaining_bytes() > 0; ++step) {
            act();
            clock_.advance(source_.chance(8) ? Duration{70s} : Duration{500ms * source_.below(20)});
            check();
        }
        clock_.advance(20s);
        check();
    }

private:
    void act()
    {
        const UUID id = alertID(source_.below(mostAlerts));
        switch (source_.below(8)) {
        case 0:
            return start(cloud_.refreshAlerts());
        case 1:
            return start(cloud_.uploadAlert({id, TriggerReason::motion, wallClock_.now(), "Mac", {}, true},
                                            source_.chance(2) ? std::optional{Bytes{1, 2, 3}} : std::nullopt));
        case 2:
            return start(remove(id));
        case 3:
            return start(readPhoto(id));
        case 4:
            return start(checkUser());
        case 5:
            presence_.setPushTokenRegistered(source_.chance(2));
            return;
        case 6:
            return presence_.receive({source_.chance(4)
                                          ? std::optional{source_.recordName()}
                                          : std::optional<std::string>{CloudSubscriptions::macCommandIdentifier},
                                      source_.chance(2) ? std::optional{source_.recordName()} : std::nullopt});
        default:
            return presence_.systemDidWake();
        }
    }

    Async<void> remove(UUID id)
    {
        std::unordered_set<UUID> asked{id};
        const auto gone = co_await cloud_.deleteAlerts(std::move(asked));
        require(gone.empty() || (gone.size() == 1 && gone.contains(id)), "an alert is gone that nobody deleted");
    }
    Async<void> readPhoto(UUID id) { co_await cloud_.alertPhoto(id); }
    Async<void> checkUser()
    {
        co_await cloud_.refreshAvailability(true);
        co_await cloud_.verifyCacheOwner();
    }

    /// Runs a request, whose documented failures are no finding.
    void start(Async<void> work) { MainActor{process_}.spawn(guarded(std::move(work))); }
    static Async<void> guarded(Async<void> work)
    {
        try {
            co_await std::move(work);
        } catch (const ports::CloudError&) {
        } catch (const CloudKitServiceError&) {
        }
    }

    void check()
    {
        for (const AlertEvent& alert : cloud_.cachedAlerts()) {
            require(std::isfinite(alert.timestamp.secondsSinceReferenceDate), "an alert is listed without a time");
            require(alert.deviceName.size() <= longestDeviceName, "an alert is listed with too long a name");
        }
        const auto sequence = defaults_.integer("sentrel.macLastAppliedCommandSequence");
        require(!sequence || database_.commands.contains(*sequence), "a command counts that nobody gave");
        require(!settings_.settings().isArmed || !database_.commands.empty(), "the Mac arms itself");
        // The next launch reads the cache file, whatever it holds.
        const auto file = files_.contents.find("/support/Sentrel/alert-metadata-cache.json");
        require(file == files_.contents.end() || decodeAlertCache(file->second), "the cache can't be read again");
    }

    FuzzedDataProvider input_;
    VirtualClock clock_;
    VirtualScheduler process_{clock_};
    RunningClock wallClock_{clock_};
    Source source_{input_, wallClock_};
    AnyAccount account_{source_};
    AnyDatabase database_{source_};
    MemoryFiles files_;
    SilentJournal journal_;
    FixedHost host_;
    simulation::DefaultsFile defaults_{files_, journal_, "/defaults", "app"};
    CountingRandom random_;
    EnglishLanguage language_;
    CloudKitService cloud_{MainActor{process_},
                           {account_, database_, defaults_, files_, host_, wallClock_, random_, language_, journal_}};
    SettingsStore settings_{MainActor{process_}, defaults_};
    MacPresenceService presence_{MainActor{process_},
                                 true,
                                 cloud_,
                                 settings_,
                                 {[this] { return settings_.settings().isArmed; }, [](const AlarmSettings&) {}, [] {}},
                                 {defaults_, host_, wallClock_, random_, journal_}};
};

} // namespace
} // namespace sentrel::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    sentrel::fuzz::Mac{data, size}.live();
    return 0;
}
