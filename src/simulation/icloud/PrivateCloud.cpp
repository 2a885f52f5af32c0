#include "simulation/icloud/PrivateCloud.hpp"

#include "ports/Journal.hpp"
#include "ports/WallClock.hpp"
#include "simulation/Events.hpp"
#include "simulation/icloud/BatchWriter.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/CloudSchema.hpp"
#include "simulation/icloud/CloudStore.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <system_error>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::size_t mostItems = 400; // per request
constexpr std::size_t mostResults = 200;

constexpr std::string_view hexDigits = "0123456789abcdef";

/// The position in a query: all names that it found, and the next one's place.
class Cursor final : public ports::CloudQueryCursor {
public:
    std::string user;
    ports::CloudQuery query;
    std::shared_ptr<const std::vector<std::string>> names;
    std::size_t place = 0;
};

ServerPage nextPage(CloudStore& store, Cursor cursor, const ports::CloudDesiredKeys& wanted, std::size_t limit)
{
    const std::size_t most = limit == 0 ? mostResults : std::min(limit, mostResults);
    const SqlPart condition = conditionOf(cursor.query.predicate);
    ServerPage page;
    while (page.results.size() < most && cursor.place < cursor.names->size()) {
        const std::string& name = (*cursor.names)[cursor.place++];
        if (store.matches(name, cursor.query.recordType, condition)) {
            page.results.emplace_back(name, *store.read(name, wanted));
        }
    }
    if (cursor.place < cursor.names->size()) {
        page.cursor = std::make_shared<const Cursor>(std::move(cursor));
    }
    return page;
}

void check(const ServerBatch& batch)
{
    if (batch.isAtomic) {
        // Only custom zones support atomic batches. Refused, so that nobody relies on them.
        throw cloudError(CKError::invalidArguments);
    }
    if (batch.save.size() + batch.deleteNames.size() > mostItems) {
        throw cloudError(CKError::limitExceeded);
    }
    std::set<std::string> names{batch.deleteNames.begin(), batch.deleteNames.end()};
    for (const ServerRecord& record : batch.save) {
        names.insert(record.name);
    }
    if (names.size() < batch.save.size() + batch.deleteNames.size()) {
        throw cloudError(CKError::invalidArguments); // the same record twice
    }
}

/// Whether the options are valid and some change fires the subscription.
bool fires(const ports::CloudSubscription& subscription)
{
    constexpr std::uint64_t creationUpdateOrDeletion = 7; // CKQuerySubscriptionOptions
    constexpr std::uint64_t once = 8;
    return (subscription.options & creationUpdateOrDeletion) != 0 &&
           (subscription.options & ~(creationUpdateOrDeletion | once)) == 0;
}

/// Whether the notification shows, sounds or wakes; CloudKit refuses subscriptions to any other.
bool notifies(const ports::CloudSubscription& subscription)
{
    return subscription.sendsContentAvailable || !subscription.alertLocalizationKey.empty() ||
           !subscription.soundName.empty();
}

void appendHex(std::string& text, unsigned char octet)
{
    text += hexDigits[octet >> 4U];
    text += hexDigits[octet & 0xFU];
}

} // namespace

PrivateCloud::PrivateCloud(std::filesystem::path folder, ports::WallClock& clock, ports::Journal& journal)
    : folder_(std::move(folder)), clock_(clock), journal_(journal)
{
}

PrivateCloud::~PrivateCloud() = default;

void PrivateCloud::setQuota(const std::string& user, std::optional<std::uint64_t> bytes)
{
    const std::lock_guard guard{mutex_};
    quotas_[user] = bytes.value_or(BatchWriter::Terms{}.quota);
}

bool PrivateCloud::isFull(const std::string& user)
{
    const std::lock_guard guard{mutex_};
    const auto found = quotas_.find(user);
    return found != quotas_.end() && found->second == 0;
}

/// Runs the work on the account's store, under the lock. A file's failure throws error 23 (zone busy) or 1 (internal).
template <class Serve> auto PrivateCloud::serve(const std::string& user, Serve work)
{
    const std::lock_guard guard{mutex_};
    try {
        return work(storeOf(user));
    } catch (const SqliteError& error) {
        if (error.isDamage()) {
            putAside(user);
        } else if (error.isBusy()) {
            throw cloudError(CKError::zoneBusy);
        }
        throw cloudError(CKError::internalError);
    }
}

CloudStore& PrivateCloud::storeOf(const std::string& user)
{
    std::unique_ptr<CloudStore>& store = stores_[user];
    if (store == nullptr) {
        store = openOrReplace(user);
    }
    return *store;
}

std::unique_ptr<CloudStore> PrivateCloud::openOrReplace(const std::string& user)
{
    if (folder_.empty()) {
        return std::make_unique<CloudStore>(":memory:", now());
    }
    // If this fails, opening the file fails and tells why.
    std::error_code ignored;
    std::filesystem::create_directories(folder_, ignored);
    try {
        return std::make_unique<CloudStore>(fileOf(user), now());
    } catch (const SqliteError& error) {
        if (!error.isDamage()) {
            throw;
        }
    }
    putAside(user);
    return std::make_unique<CloudStore>(fileOf(user), now());
}

void PrivateCloud::putAside(const std::string& user)
{
    stores_[user].reset();
    if (folder_.empty()) {
        return;
    }
    const std::filesystem::path file = fileOf(user);
    std::filesystem::path aside;
    for (int number = 1; aside.empty() || std::filesystem::exists(aside); ++number) {
        aside = file;
        aside += ".damaged-" + std::to_string(number);
    }
    std::error_code failure;
    std::filesystem::rename(file, aside, failure);
    for (const char* const suffix : {"-wal", "-shm"}) { // SQLite's companions of the damaged file
        std::filesystem::path companion = file;
        companion += suffix;
        std::error_code ignored;
        std::filesystem::remove(companion, ignored);
    }
    const std::string name = aside.filename().string();
    journal_.note(events::CloudDamaged{user, failure ? std::string_view{} : name});
}

std::filesystem::path PrivateCloud::fileOf(const std::string& user) const
{
    // Encoded, so that no user name leads out of the folder.
    std::string name;
    for (const char character : user) {
        const bool isPlain = (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
        if (isPlain) {
            name += character;
        } else {
            name += '%';
            appendHex(name, static_cast<unsigned char>(character));
        }
    }
    return folder_ / (name + ".sqlite");
}

ServerPage PrivateCloud::query(const CloudDevice& who, const ports::CloudQuery& query,
                               const ports::CloudDesiredKeys& wanted, std::size_t limit)
{
    static_cast<void>(conditionOf(query.predicate)); // throws if unsupported
    requireIndexes(query.recordType, query.predicate, query.sortKey);
    return serve(who.user, [&](CloudStore& store) {
        Cursor all;
        all.user = who.user;
        all.query = query;
        all.names = std::make_shared<const std::vector<std::string>>(store.select(query));
        return nextPage(store, std::move(all), wanted, limit);
    });
}

ServerPage PrivateCloud::continueQuery(const CloudDevice& who, const ports::CloudQueryCursor* cursor,
                                       const ports::CloudDesiredKeys& wanted, std::size_t limit)
{
    const auto* const ours = dynamic_cast<const Cursor*>(cursor);
    if (ours == nullptr || ours->user != who.user) {
        throw cloudError(CKError::invalidArguments);
    }
    return serve(who.user, [&](CloudStore& store) { return nextPage(store, *ours, wanted, limit); });
}

std::map<std::string, ServerRecordResult> PrivateCloud::fetch(const CloudDevice& who,
                                                              const std::vector<std::string>& names,
                                                              const ports::CloudDesiredKeys& wanted)
{
    if (names.size() > mostItems) {
        throw cloudError(CKError::limitExceeded);
    }
    if (!std::ranges::all_of(names, isRecordName)) {
        throw cloudError(CKError::invalidArguments);
    }
    return serve(who.user, [&](CloudStore& store) {
        std::map<std::string, ServerRecordResult> results;
        for (const std::string& name : names) {
            auto record = store.read(name, wanted);
            results.emplace(name, record ? ServerRecordResult{std::move(*record)}
                                         : ServerRecordResult{cloudError(CKError::unknownItem)});
        }
        return results;
    });
}

ServerModification PrivateCloud::modify(const CloudDevice& who, const ServerBatch& batch)
{
    check(batch);
    std::vector<Json> pushes;
    ServerModification modification =
        serve(who.user, [&](CloudStore& store) { return write(store, who, batch, pushes); });
    // Without the lock: a receiver may make requests.
    for (const Json& push : pushes) {
        for (const auto& receiver : receivers_.all()) {
            receiver->tell(who.user, who.device, push);
        }
    }
    return modification;
}

ServerModification PrivateCloud::write(CloudStore& store, const CloudDevice& who, const ServerBatch& batch,
                                       std::vector<Json>& pushes)
{
    BatchWriter::Terms terms;
    terms.now = now();
    terms.owner = userRecordName(who.user);
    if (const auto quota = quotas_.find(who.user); quota != quotas_.end()) {
        terms.quota = quota->second;
    }
    SqliteTransaction transaction{store.database()};
    BatchWriter writer{store, std::move(terms)};
    ServerModification modification = writer.apply(batch);
    transaction.commit();
    pushes = writer.takePushes();
    return modification;
}

void PrivateCloud::saveSubscription(const CloudDevice& who, const ports::CloudSubscription& subscription)
{
    if (!isRecordName(subscription.identifier) || !fires(subscription) || !notifies(subscription)) {
        throw cloudError(CKError::invalidArguments);
    }
    static_cast<void>(conditionOf(subscription.predicate)); // throws if unsupported
    requireIndexes(subscription.recordType, subscription.predicate);
    serve(who.user, [&](CloudStore& store) { store.saveSubscription(subscription); });
}

std::vector<ports::CloudSubscription> PrivateCloud::subscriptions(const std::string& user)
{
    return serve(user, [](CloudStore& store) { return store.subscriptions(); });
}

std::vector<std::string> PrivateCloud::names(const std::string& user, const std::string& type)
{
    return serve(user, [&](CloudStore& store) { return store.select({type, {"TRUEPREDICATE", {}}, "", true}); });
}

std::uint64_t PrivateCloud::count(const std::string& user, const std::string& type)
{
    return serve(user, [&](CloudStore& store) { return store.count(type); });
}

ports::RegistrationPtr PrivateCloud::receivePushes(const std::string& device, PushReceiver receiver)
{
    auto told = [device, receiver = std::move(receiver)](const std::string& user, const std::string& writer,
                                                         const Json& push) {
        if (writer != device) {
            receiver(user, push);
        }
    };
    return receivers_.add(std::make_shared<Receivers::Entry::element_type>(std::move(told)));
}

std::string PrivateCloud::userRecordName(const std::string& user)
{
    // FNV-1a twice: the names only have to be distinct per user and the same in each run.
    std::string name = "_";
    for (const std::uint64_t basis : {14695981039346656037ULL, 7809847782465536322ULL}) {
        std::uint64_t hash = basis;
        for (const char character : user) {
            hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211ULL;
        }
        for (int octet = 0; octet < 8; ++octet, hash >>= 8U) {
            appendHex(name, static_cast<unsigned char>(hash & 0xFFU));
        }
    }
    return name;
}

} // namespace sentrel::simulation
