#include "simulation/icloud/CloudStore.hpp"

#include "foundation/Json.hpp"
#include "simulation/icloud/SubscriptionCoding.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::int64_t layout = 1;

constexpr std::int64_t listKind = 4;
constexpr std::int64_t assetKind = 5;
static_assert(std::is_same_v<std::variant_alternative_t<listKind, ServerValue>, TextList>);
static_assert(std::is_same_v<std::variant_alternative_t<assetKind, ServerValue>, Bytes>);

/// For all values but lists.
SqliteValue columnValue(const ServerValue& value)
{
    if (const auto* const date = std::get_if<Date>(&value)) {
        return date->secondsSinceReferenceDate;
    }
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return *text;
    }
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        return *integer;
    }
    if (const auto* const real = std::get_if<double>(&value)) {
        return *real;
    }
    return std::get<Bytes>(value);
}

/// Whether the value counts as 8 bytes, whatever it is.
bool hasFixedSize(const ServerValue& value)
{
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value) ||
           std::holds_alternative<Date>(value);
}

/// For all kinds but lists and assets.
ServerValue fieldValue(const SqliteStatement& row, std::int64_t kind, int column)
{
    switch (kind) {
    case 0:
        return row.text(column);
    case 1:
        return row.integer(column);
    case 2:
        return row.real(column);
    default:
        return Date{row.real(column)};
    }
}

} // namespace

CloudStore::CloudStore(const std::filesystem::path& file, Date now) : database_(file)
{
    // The log survives the end of this program; a simulated server needs no more durability.
    database_.run("PRAGMA synchronous = OFF");
    database_.run("PRAGMA journal_mode = WAL");
    // Some builds of SQLite overwrite each page that is freed: all pages of a catalog with each alert.
    database_.run("PRAGMA secure_delete = OFF");
    if (database_.text("PRAGMA quick_check(1)") != "ok") {
        throw SqliteError::damage("the database is damaged");
    }
    const std::int64_t found = database_.integer("PRAGMA user_version").value_or(0);
    if (found == 0 && database_.integer("SELECT count(*) FROM sqlite_master") == 0) {
        makeTables(now);
    } else if (found != layout) {
        throw SqliteError::damage("the database has an unknown layout");
    }
    epoch_ = database_.text("SELECT epoch FROM server").value_or("");
}

void CloudStore::makeTables(Date now)
{
    SqliteTransaction transaction{database_};
    for (const char* const table : {
             "CREATE TABLE server(epoch TEXT NOT NULL, number INTEGER NOT NULL)",
             "CREATE TABLE records(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL UNIQUE, "
             "type TEXT NOT NULL, tag TEXT NOT NULL, created REAL NOT NULL, modified REAL NOT NULL)",
             "CREATE INDEX recordsByType ON records(type)",
             "CREATE TABLE fields(record INTEGER NOT NULL, name TEXT NOT NULL, kind INTEGER NOT NULL, "
             "value NOT NULL, PRIMARY KEY(record, name))",
             "CREATE TABLE sizes(record INTEGER PRIMARY KEY, bytes INTEGER NOT NULL)",
             "CREATE TABLE subscriptions(id TEXT PRIMARY KEY, definition TEXT NOT NULL)",
         }) {
        database_.run(table);
    }
    database_.run("INSERT INTO server VALUES(?, 0)", {encodeJson(Json(now.secondsSinceReferenceDate))});
    database_.run("PRAGMA user_version = " + std::to_string(layout));
    transaction.commit();
}

std::optional<CloudStore::Header> CloudStore::find(const std::string& name)
{
    SqliteStatement row = database_.prepare("SELECT id, type, tag, modified FROM records WHERE name = ?");
    row.start({name});
    if (!row.next()) {
        return std::nullopt;
    }
    return Header{row.integer(0), row.text(1), row.text(2), Date{row.real(3)}};
}

std::optional<ServerRecord> CloudStore::read(const std::string& name, const ports::CloudDesiredKeys& wanted)
{
    return read(name, wanted, Assets::asWanted);
}

std::optional<ServerRecord> CloudStore::readWithoutAssets(const std::string& name)
{
    return read(name, std::nullopt, Assets::none);
}

std::optional<ServerRecord> CloudStore::read(const std::string& name, const ports::CloudDesiredKeys& wanted,
                                             Assets assets)
{
    const auto header = find(name);
    if (!header) {
        return std::nullopt;
    }
    return ServerRecord{header->type, name, readFields(*header, wanted, assets), header->tag, header->modificationDate};
}

ServerFields CloudStore::readFields(const Header& record, const ports::CloudDesiredKeys& wanted, Assets assets)
{
    // SQLite reads the values of a row as soon as it steps there: those of photos and lists are large.
    SqliteStatement row =
        database_.prepare("SELECT name, kind, CASE WHEN kind < 4 THEN value END FROM fields WHERE record = ?");
    row.start({record.id});
    ServerFields fields;
    while (row.next()) {
        const std::string field = row.text(0);
        const std::int64_t kind = row.integer(1);
        if ((wanted && std::ranges::find(*wanted, field) == wanted->end()) ||
            (kind == assetKind && assets == Assets::none)) {
            continue;
        }
        if (kind == listKind) {
            fields.emplace(field, readList(record, field));
        } else if (kind == assetKind) {
            fields.emplace(field, readLarge(record.id, field));
        } else {
            fields.emplace(field, fieldValue(row, kind, 2));
        }
    }
    return fields;
}

TextList CloudStore::readList(const Header& record, const std::string& field)
{
    const StoredLists::Place place{record.id, field};
    const TextList* const known = lists_.find(place, record.tag);
    return known != nullptr ? *known : lists_.keep(place, record.tag, readLarge(record.id, field));
}

Bytes CloudStore::readLarge(std::int64_t id, const std::string& field)
{
    SqliteStatement row = database_.prepare("SELECT value FROM fields WHERE record = ? AND name = ?");
    row.start({id, field});
    return row.next() ? row.bytes(0) : Bytes{};
}

ServerRecord CloudStore::write(const ServerRecord& record, const std::optional<Header>& known, Date now)
{
    std::string tag = epoch_ + "-" + std::to_string(nextNumber());
    const double modified = now.secondsSinceReferenceDate;
    if (known) {
        database_.run("UPDATE records SET tag = ?, modified = ? WHERE id = ?", {tag, modified, known->id});
    } else {
        database_.run("INSERT INTO records(name, type, tag, created, modified) VALUES(?, ?, ?, ?, ?)",
                      {record.name, record.type, tag, modified, modified});
    }
    const std::int64_t id = known ? known->id : find(record.name)->id;
    ServerRecord stored{record.type, record.name, {}, std::move(tag), now};
    if (known) {
        stored.fields = readFields(*known, std::nullopt, Assets::none);
    }
    writeFields(id, record, stored);
    return stored;
}

/// Writes the fields that differ from the stored ones, which then have the record's values.
void CloudStore::writeFields(std::int64_t id, const ServerRecord& record, ServerRecord& stored)
{
    bool isSameSize = true;
    SqliteStatement field = database_.prepare("REPLACE INTO fields VALUES(?, ?, ?, ?)");
    for (const auto& [name, value] : record.fields) {
        const bool isAsset = std::holds_alternative<Bytes>(value);
        const auto earlier = stored.fields.find(name);
        if (!isAsset && earlier != stored.fields.end() && earlier->second == value) {
            continue;
        }
        isSameSize = isSameSize && !isAsset && earlier != stored.fields.end() && hasFixedSize(value) &&
                     hasFixedSize(earlier->second);
        if (isAsset) {
            stored.fields.erase(name);
        } else {
            stored.fields.insert_or_assign(name, value);
        }
        const auto* const texts = std::get_if<TextList>(&value);
        SqliteValue column = texts == nullptr
                                 ? columnValue(value)
                                 : SqliteValue{std::string_view{lists_.encode({id, name}, stored.tag, *texts)}};
        field.start({id, name, static_cast<std::int64_t>(value.index()), std::move(column)});
        static_cast<void>(field.next());
    }
    const std::int64_t listBytes = keepLists(id, stored);
    if (isSameSize && !stored.fields.empty()) {
        return;
    }
    database_.run("REPLACE INTO sizes SELECT ?, 64 + length(?) + ? + coalesce(sum(length(name) + "
                  "CASE WHEN kind = 4 THEN 0 WHEN typeof(value) = 'blob' THEN length(value) "
                  "WHEN typeof(value) = 'text' THEN length(CAST(value AS BLOB)) ELSE 8 END), 0) "
                  "FROM fields WHERE record = ?",
                  {id, record.name, listBytes, id});
}

/// Keeps the lists of the record's new version. Returns the bytes that they take.
std::int64_t CloudStore::keepLists(std::int64_t id, const ServerRecord& stored)
{
    std::size_t size = 0;
    for (const auto& [name, value] : stored.fields) {
        if (const auto* const texts = std::get_if<TextList>(&value)) {
            size += lists_.encode({id, name}, stored.tag, *texts).size();
        }
    }
    return static_cast<std::int64_t>(size);
}

void CloudStore::remove(const Header& record)
{
    database_.run("DELETE FROM fields WHERE record = ?", {record.id});
    database_.run("DELETE FROM sizes WHERE record = ?", {record.id});
    database_.run("DELETE FROM records WHERE id = ?", {record.id});
    lists_.forget(record.id);
}

std::vector<std::string> CloudStore::select(const ports::CloudQuery& query)
{
    SqlPart condition = conditionOf(query.predicate);
    std::vector<SqliteValue> values{query.recordType};
    std::ranges::move(condition.values, std::back_inserter(values));
    std::string sql = "SELECT r.name FROM records r WHERE r.type = ? AND " + condition.sql + " ORDER BY ";
    if (!query.sortKey.empty()) {
        SqlPart order = orderOf(query.sortKey);
        sql += order.sql + (query.isAscending ? ", " : " DESC, ");
        std::ranges::move(order.values, std::back_inserter(values));
    }
    SqliteStatement row = database_.prepare(sql + "r.id");
    row.start(values);
    std::vector<std::string> names;
    while (row.next()) {
        names.push_back(row.text(0));
    }
    return names;
}

bool CloudStore::matches(const std::string& name, const std::string& type, const SqlPart& condition)
{
    std::vector<SqliteValue> values{name, type};
    values.insert(values.end(), condition.values.begin(), condition.values.end());
    return database_.integer("SELECT 1 FROM records r WHERE r.name = ? AND r.type = ? AND " + condition.sql, values)
        .has_value();
}

std::uint64_t CloudStore::count(const std::string& type)
{
    return static_cast<std::uint64_t>(
        database_.integer("SELECT count(*) FROM records WHERE type = ?", {type}).value_or(0));
}

std::uint64_t CloudStore::storedBytes()
{
    return static_cast<std::uint64_t>(database_.integer("SELECT coalesce(sum(bytes), 0) FROM sizes").value_or(0));
}

const std::vector<ports::CloudSubscription>& CloudStore::subscriptions()
{
    if (!subscriptions_) {
        subscriptions_ = readSubscriptions();
    }
    return *subscriptions_;
}

std::vector<ports::CloudSubscription> CloudStore::readSubscriptions()
{
    SqliteStatement row = database_.prepare("SELECT definition FROM subscriptions ORDER BY id");
    row.start();
    std::vector<ports::CloudSubscription> all;
    while (row.next()) {
        if (auto subscription = decodeSubscription(row.bytes(0))) {
            all.push_back(std::move(*subscription));
        }
    }
    return all;
}

void CloudStore::saveSubscription(const ports::CloudSubscription& subscription)
{
    subscriptions_.reset();
    database_.run("REPLACE INTO subscriptions VALUES(?, ?)",
                  {subscription.identifier, encodeSubscription(subscription)});
}

void CloudStore::removeSubscription(const std::string& identifier)
{
    subscriptions_.reset();
    database_.run("DELETE FROM subscriptions WHERE id = ?", {identifier});
}

std::int64_t CloudStore::nextNumber()
{
    // Two statements: for RETURNING, SQLite makes a table of its own each time, which takes far longer.
    database_.run("UPDATE server SET number = number + 1");
    return database_.integer("SELECT number FROM server").value_or(0);
}

} // namespace sentrel::simulation
