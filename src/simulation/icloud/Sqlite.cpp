#include "simulation/icloud/Sqlite.hpp"

#include <sqlite3.h>

#include <utility>

namespace sentrel::simulation {

namespace {

constexpr int patience = 250; // milliseconds to wait for a locked file

[[noreturn]] void fail(sqlite3* database, int code)
{
    throw SqliteError{code, database == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(database)};
}

} // namespace

SqliteError SqliteError::damage(const std::string& why)
{
    return {SQLITE_CORRUPT, why};
}

bool SqliteError::isDamage() const
{
    return code_ == SQLITE_CORRUPT || code_ == SQLITE_NOTADB;
}

bool SqliteError::isBusy() const
{
    return code_ == SQLITE_BUSY || code_ == SQLITE_LOCKED;
}

void SqliteFinalize::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

SqliteStatement::SqliteStatement(sqlite3& database, SqliteStatements& idle, const std::string& sql)
    : database_(database), idle_(idle), node_(idle.extract(sql))
{
    if (node_.empty()) {
        sqlite3_stmt* statement = nullptr;
        const int code = sqlite3_prepare_v2(&database, sql.c_str(), -1, &statement, nullptr);
        if (code != SQLITE_OK) {
            fail(&database, code);
        }
        SqliteStatements made;
        made.emplace(sql, statement);
        node_ = made.extract(made.begin());
    }
    statement_ = node_.mapped().get();
}

SqliteStatement::~SqliteStatement()
{
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_); // values may be large
    idle_.insert(std::move(node_));
}

void SqliteStatement::start(const std::vector<SqliteValue>& values)
{
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
    int place = 0;
    for (const SqliteValue& value : values) {
        bind(++place, value);
    }
}

void SqliteStatement::bind(int place, const SqliteValue& value)
{
    int code = SQLITE_OK;
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        code = sqlite3_bind_int64(statement_, place, *integer);
    } else if (const auto* const real = std::get_if<double>(&value)) {
        code = sqlite3_bind_double(statement_, place, *real);
    } else if (const auto* const text = std::get_if<std::string>(&value)) {
        code = sqlite3_bind_text64(statement_, place, text->data(), text->size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    } else if (const auto* const view = std::get_if<std::string_view>(&value)) {
        code = sqlite3_bind_text64(statement_, place, view->data(), view->size(), SQLITE_STATIC, SQLITE_UTF8);
    } else if (const auto* const bytes = std::get_if<Bytes>(&value)) {
        // No bytes become an empty blob; a null pointer would mean NULL.
        code = bytes->empty() ? sqlite3_bind_zeroblob(statement_, place, 0)
                              : sqlite3_bind_blob64(statement_, place, bytes->data(), bytes->size(), SQLITE_TRANSIENT);
    }
    if (code != SQLITE_OK) {
        fail(&database_, code);
    }
}

bool SqliteStatement::next()
{
    const int code = sqlite3_step(statement_);
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        fail(&database_, code);
    }
    return code == SQLITE_ROW;
}

std::int64_t SqliteStatement::integer(int column) const
{
    return sqlite3_column_int64(statement_, column);
}

double SqliteStatement::real(int column) const
{
    return sqlite3_column_double(statement_, column);
}

std::string SqliteStatement::text(int column) const
{
    const Bytes content = bytes(column);
    return std::string{textOf(content)};
}

Bytes SqliteStatement::bytes(int column) const
{
    // The content is read first: the size is that of the form requested last.
    const auto* const content = static_cast<const std::uint8_t*>(sqlite3_column_blob(statement_, column));
    const int size = sqlite3_column_bytes(statement_, column);
    return content == nullptr ? Bytes{} : Bytes(content, content + size);
}

void SqliteDatabase::Close::operator()(sqlite3* database) const
{
    sqlite3_close_v2(database);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file)
{
    sqlite3* database = nullptr;
    // One thread at a time uses a database, and nobody reads the library's statistics: it needs no lock for either.
    [[maybe_unused]] static const int isConfigured = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    const int code = sqlite3_open_v2(file.c_str(), &database, flags, nullptr);
    database_.reset(database);
    if (code != SQLITE_OK) {
        fail(database, code);
    }
    sqlite3_busy_timeout(database, patience);
}

void SqliteDatabase::run(const std::string& sql, const std::vector<SqliteValue>& values)
{
    SqliteStatement statement = prepare(sql);
    statement.start(values);
    while (statement.next()) {
    }
}

void SqliteDatabase::attempt(const char* sql)
{
    sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
}

std::optional<std::int64_t> SqliteDatabase::integer(const std::string& sql, const std::vector<SqliteValue>& values)
{
    SqliteStatement statement = prepare(sql);
    statement.start(values);
    return statement.next() ? std::optional{statement.integer(0)} : std::nullopt;
}

std::optional<std::string> SqliteDatabase::text(const std::string& sql, const std::vector<SqliteValue>& values)
{
    SqliteStatement statement = prepare(sql);
    statement.start(values);
    return statement.next() ? std::optional{statement.text(0)} : std::nullopt;
}

SqliteTransaction::~SqliteTransaction()
{
    if (isOpen_) {
        database_.attempt("ROLLBACK"); // fails harmlessly if an error has rolled back already
    }
}

void SqliteTransaction::commit()
{
    database_.run("COMMIT");
    isOpen_ = false;
}

} // namespace sentrel::simulation
