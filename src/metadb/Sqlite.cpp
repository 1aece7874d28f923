#include "metadb/Sqlite.h"

#include <filesystem>
#include <sqlite3.h>
#include <system_error>

namespace VemoKesConfigTools::metadb {

void Sqlite::Closer::operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }

void Sqlite::Finalizer::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

Sqlite::Sqlite(const std::string& path, Mode mode) : mPath(path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) throw DatabaseError(path + ": is a directory");
    const int flags =
        mode == Mode::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    sqlite3* database = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    mpDatabase.reset(database);
    if (code != SQLITE_OK) Fail(code);
    // A database from elsewhere may hold anything: its schema must run no code of its own choice.
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

void Sqlite::Execute(const char* sql) {
    const int code = sqlite3_exec(mpDatabase.get(), sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Fail(code);
}

std::int64_t Sqlite::Number(const char* sql) {
    SqliteStatement statement = Prepare(sql);
    return statement.Step() ? statement.Number(0) : 0;
}

SqliteStatement Sqlite::Prepare(const char* sql) {
    if (auto idle = mIdle.extract(sql)) return {*this, sql, std::move(idle.mapped())};
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(mpDatabase.get(), sql, -1, &statement, nullptr);
    if (code != SQLITE_OK) Fail(code);
    return {*this, sql, Statement(statement)};
}

std::int64_t Sqlite::LastRowId() const { return sqlite3_last_insert_rowid(mpDatabase.get()); }

void Sqlite::Fail(int code) const {
    const char* text = mpDatabase ? sqlite3_errmsg(mpDatabase.get()) : sqlite3_errstr(code);
    throw DatabaseError(mPath + ": " + text);
}

SqliteStatement::~SqliteStatement() {
    Reset();
    mDatabase.mIdle.emplace(mSql, std::move(mpStatement));
}

bool SqliteStatement::Step() {
    const int code = sqlite3_step(mpStatement.get());
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) mDatabase.Fail(code);
    return false;
}

std::string SqliteStatement::Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(mpStatement.get(), column));
    if (text == nullptr) return {};
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(mpStatement.get(), column))};
}

std::int64_t SqliteStatement::Number(int column) const {
    return sqlite3_column_int64(mpStatement.get(), column);
}

void SqliteStatement::Reset() {
    sqlite3_reset(mpStatement.get());
    sqlite3_clear_bindings(mpStatement.get());
}

void SqliteStatement::BindOne(int position, std::int64_t value) {
    const int code = sqlite3_bind_int64(mpStatement.get(), position, value);
    if (code != SQLITE_OK) mDatabase.Fail(code);
}

void SqliteStatement::BindOne(int position, std::string_view value) {
    const int code = sqlite3_bind_text64(mpStatement.get(), position, value.data(), value.size(),
                                         SQLITE_TRANSIENT, SQLITE_UTF8);
    if (code != SQLITE_OK) mDatabase.Fail(code);
}

}  // namespace VemoKesConfigTools::metadb
