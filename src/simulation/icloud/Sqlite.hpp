#pragma once

#include "foundation/Bytes.hpp"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace sentrel::simulation {

/// A failure of SQLite.
class SqliteError : public std::runtime_error {
public:
    SqliteError(int code, const std::string& why) : std::runtime_error(why), code_(code) {}

    /// Reports an intact file with unexpected content.
    [[nodiscard]] static SqliteError damage(const std::string& why);

    /// Whether the file is corrupt or no database.
    [[nodiscard]] bool isDamage() const;

    /// Whether the file is locked.
    [[nodiscard]] bool isBusy() const;

private:
    int code_;
};

/// A value for a question mark. A view is not copied: its text outlives the run of the statement.
using SqliteValue = std::variant<std::monostate, std::int64_t, double, std::string, std::string_view, Bytes>;

/// Frees an SQLite statement.
struct SqliteFinalize {
    void operator()(sqlite3_stmt* statement) const;
};

/// Idle prepared statements for reuse, by their text: preparing takes longer than running most of them.
using SqliteStatements = std::multimap<std::string, std::unique_ptr<sqlite3_stmt, SqliteFinalize>>;

/// A prepared statement, put back among the idle ones on destruction. Its database outlives it. Not synchronised.
class SqliteStatement {
public:
    SqliteStatement(sqlite3& database, SqliteStatements& idle, const std::string& sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    /// Restarts with these values for its question marks. Throws `SqliteError`.
    void start(const std::vector<SqliteValue>& values = {});

    /// Goes to the next row; false at the end. Throws `SqliteError`.
    [[nodiscard]] bool next();

    /// A column of the current row, counted from 0; other types are converted, null gives empty or 0.
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] double real(int column) const;
    [[nodiscard]] std::string text(int column) const;
    [[nodiscard]] Bytes bytes(int column) const;

private:
    void bind(int place, const SqliteValue& value);

    sqlite3& database_;
    SqliteStatements& idle_;
    SqliteStatements::node_type node_;
    sqlite3_stmt* statement_ = nullptr;
};

/// An open database file. Not synchronised.
class SqliteDatabase {
public:
    /// Opens or creates the file. Throws `SqliteError`.
    explicit SqliteDatabase(const std::filesystem::path& file);

    [[nodiscard]] SqliteStatement prepare(const std::string& sql) { return {*database_, idle_, sql}; }

    /// Runs one statement to its end. Throws `SqliteError`.
    void run(const std::string& sql, const std::vector<SqliteValue>& values = {});

    /// Runs one statement and ignores its failure.
    void attempt(const char* sql);

    /// The first column of the first row; none without a row. Throws `SqliteError`.
    [[nodiscard]] std::optional<std::int64_t> integer(const std::string& sql,
                                                      const std::vector<SqliteValue>& values = {});
    [[nodiscard]] std::optional<std::string> text(const std::string& sql, const std::vector<SqliteValue>& values = {});

private:
    struct Close {
        void operator()(sqlite3* database) const;
    };

    std::unique_ptr<sqlite3, Close> database_;
    SqliteStatements idle_;
};

/// A transaction; rolled back on destruction without `commit`. Throws `SqliteError`.
class SqliteTransaction {
public:
    explicit SqliteTransaction(SqliteDatabase& database) : database_(database) { database_.run("BEGIN IMMEDIATE"); }
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    void commit();

private:
    SqliteDatabase& database_;
    bool isOpen_ = true;
};

} // namespace sentrel::simulation
