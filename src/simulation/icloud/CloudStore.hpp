#pragma once

#include "simulation/icloud/PredicateSql.hpp"
#include "simulation/icloud/ServerRecord.hpp"
#include "simulation/icloud/Sqlite.hpp"
#include "simulation/icloud/StoredLists.hpp"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// One account's private database in its file. All members throw `SqliteError`. Not synchronised. Callers put changes
/// that belong together into one `SqliteTransaction`.
class CloudStore {
public:
    /// A record without its fields.
    struct Header {
        std::int64_t id = 0;
        std::string type;
        std::string tag;
        Date modificationDate{};
    };

    /// Opens or creates the file. Another layout counts as damage. `now` makes the tags of a new database differ from
    /// those of the database that it replaces.
    CloudStore(const std::filesystem::path& file, Date now);

    [[nodiscard]] SqliteDatabase& database() { return database_; }

    [[nodiscard]] std::optional<Header> find(const std::string& name);

    /// The record with the wanted fields; none if there is no such record.
    [[nodiscard]] std::optional<ServerRecord> read(const std::string& name, const ports::CloudDesiredKeys& wanted);

    /// The record with all fields but assets.
    [[nodiscard]] std::optional<ServerRecord> readWithoutAssets(const std::string& name);

    /// Creates the record if `known` is none, else replaces the given fields and keeps the others. Sets a new tag.
    /// Returns the whole record without assets.
    ServerRecord write(const ServerRecord& record, const std::optional<Header>& known, Date now);

    void remove(const Header& record);

    /// The names of the records of a type for which the predicate holds, in the query's order.
    [[nodiscard]] std::vector<std::string> select(const ports::CloudQuery& query);

    /// Whether the record is of the type and the condition holds for it.
    [[nodiscard]] bool matches(const std::string& name, const std::string& type, const SqlPart& condition);

    [[nodiscard]] std::uint64_t count(const std::string& type);

    /// Size of all records in bytes.
    [[nodiscard]] std::uint64_t storedBytes();

    /// Ordered by identifier; valid until one is saved or removed.
    [[nodiscard]] const std::vector<ports::CloudSubscription>& subscriptions();
    void saveSubscription(const ports::CloudSubscription& subscription);
    void removeSubscription(const std::string& identifier);

    /// Returns a number never returned before.
    [[nodiscard]] std::int64_t nextNumber();

private:
    enum class Assets { asWanted, none };

    void makeTables(Date now);
    [[nodiscard]] std::optional<ServerRecord> read(const std::string& name, const ports::CloudDesiredKeys& wanted,
                                                   Assets assets);
    [[nodiscard]] std::vector<ports::CloudSubscription> readSubscriptions();
    [[nodiscard]] ServerFields readFields(const Header& record, const ports::CloudDesiredKeys& wanted, Assets assets);
    [[nodiscard]] TextList readList(const Header& record, const std::string& field);
    [[nodiscard]] Bytes readLarge(std::int64_t id, const std::string& field);
    void writeFields(std::int64_t id, const ServerRecord& record, ServerRecord& stored);
    [[nodiscard]] std::int64_t keepLists(std::int64_t id, const ServerRecord& stored);

    SqliteDatabase database_;
    std::string epoch_;
    StoredLists lists_;
    std::optional<std::vector<ports::CloudSubscription>> subscriptions_; // as stored; none until they are asked for
};

} // namespace sentrel::simulation
