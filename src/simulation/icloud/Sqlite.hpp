#pragma once

#include "foundation/Bytes.hpp"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace sentrel::simulation {

/// SQLite refused or failed.
class SqliteError : public std::runtime_error {
public:
    SqliteError(int code, const std::string& why) : std::runtime_error(why), code_(code) {}

    /// What a whole file says that is not what was expected.
    [[nodiscard]] static SqliteError damage(const std::string& why);

    /// The file is no database, or no longer whole.
    [[nodiscard]] bool isDamage() const;

    /// Somebody else holds the file.
    [[nodiscard]] bool isBusy() const;

private:
    int code_;
};

using SqliteValue = std::variant<std::monostate, std::int64_t, double, std::string, Bytes>;

/// Frees a statement of SQLite's.
struct SqliteFinalize {
    void operator()(sqlite3_stmt* statement) const;
};

/// Statements that have been prepared and wait to be used again, by their text: preparing one takes longer than most
/// take to run.
using SqliteStatements = std::multimap<std::string, std::unique_ptr<sqlite3_stmt, SqliteFinalize>>;

/// A prepared statement, which goes back to the others when it ends. Its database outlives it. No lock of its own.
class SqliteStatement {
public:
    SqliteStatement(sqlite3& database, SqliteStatements& idle, const std::string& sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    /// Begins anew with these values for its question marks. Throws `SqliteError`.
    void start(const std::vector<SqliteValue>& values = {});

    /// Goes to the next row; false at the end. Throws `SqliteError`.
    [[nodiscard]] bool next();

    /// A column of the present row, counted from 0; another type is converted, null is empty or 0.
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

/// An open database file. No lock of its own.
class SqliteDatabase {
public:
    /// Opens the file, and makes it when it isn't there. Throws `SqliteError`.
    explicit SqliteDatabase(const std::filesystem::path& file);

    [[nodiscard]] SqliteStatement prepare(const std::string& sql) { return {*database_, idle_, sql}; }

    /// Runs one statement to its end. Throws `SqliteError`.
    void run(const std::string& sql, const std::vector<SqliteValue>& values = {});

    /// Runs one statement, and takes no notice when that fails.
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

/// Everything between its making and `commit` happens, or nothing of it. Throws `SqliteError`.
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
