#include "metadb/Sqlite.h"

#include "metadb/RegularFile.h"

#include <sqlite3.h>
#include <system_error>

namespace VemoKesConfigTools::metadb {

namespace {

/// Limits for untrusted files: far above what a metadata database needs, far below what would do harm.
constexpr std::pair<int, int> LIMITS[] = {
    {SQLITE_LIMIT_LENGTH, 16 * 1024 * 1024},
    {SQLITE_LIMIT_SQL_LENGTH, 100'000},
    {SQLITE_LIMIT_COLUMN, 100},
    {SQLITE_LIMIT_EXPR_DEPTH, 20},
    {SQLITE_LIMIT_COMPOUND_SELECT, 3},
    {SQLITE_LIMIT_VDBE_OP, 25'000},
    {SQLITE_LIMIT_FUNCTION_ARG, 8},
    {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 50},
    {SQLITE_LIMIT_VARIABLE_NUMBER, 32},
    {SQLITE_LIMIT_TRIGGER_DEPTH, 1},
    {SQLITE_LIMIT_WORKER_THREADS, 0},
};

/// The URI of a file, with the characters escaped that have a special meaning in a URI.
std::string UriOf(const std::string& path) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    // A bare name could be a special one, such as ":memory:". After "file:", two slashes start a host name.
    std::string uri = path.starts_with('/') ? "file://" : "file:./";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= 'a' && byte <= 'z') || byte == '/' || byte == '.' || byte == '_';
        if (plain) {
            uri += c;
        } else {
            uri.append({'%', DIGITS[byte >> 4U], DIGITS[byte & 0xFU]});
        }
    }
    // Immutable: SQLite takes no locks, creates no files, and ignores a journal that someone put there.
    return uri + "?immutable=1";
}

}  // namespace

void Sqlite::Closer::operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }

void Sqlite::Finalizer::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

Sqlite::Sqlite() : mPath("new database") { Open(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE); }

Sqlite::Sqlite(const std::string& path) : mPath(path) {
    if (const std::string reason = WhyNoRegularFile(mPath); !reason.empty()) {
        throw UnreadableFile(mPath + ": " + reason);
    }
    Open(UriOf(mPath), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    // Makes SQLite check pages of damaged files when it reads them.
    Execute("PRAGMA cell_size_check = ON");
}

void Sqlite::Open(const std::string& uri, int flags) {
    sqlite3* database = nullptr;
    const int code = sqlite3_open_v2(uri.c_str(), &database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    mpDatabase.reset(database);
    if (code != SQLITE_OK) Fail(code);
    for (const auto& [setting, on] :
         {std::pair(SQLITE_DBCONFIG_DEFENSIVE, 1), std::pair(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0),
          std::pair(SQLITE_DBCONFIG_ENABLE_TRIGGER, 0), std::pair(SQLITE_DBCONFIG_ENABLE_VIEW, 0)}) {
        sqlite3_db_config(database, setting, on, nullptr);
    }
    for (const auto& [limit, value] : LIMITS) sqlite3_limit(database, limit, value);
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

std::string Sqlite::Serialize() const {
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
        sqlite3_serialize(mpDatabase.get(), "main", &size, 0), sqlite3_free);
    if (!bytes) Fail(SQLITE_NOMEM);
    return {reinterpret_cast<const char*>(bytes.get()), static_cast<std::size_t>(size)};
}

void Sqlite::Fail(int code) const {
    const char* text = mpDatabase ? sqlite3_errmsg(mpDatabase.get()) : sqlite3_errstr(code);
    // SQLite also reports a read error of the file as "malformed"; the error of the system says what
    // happened.
    int cause = 0;
    const bool isOpen = mpDatabase && sqlite3_file_control(mpDatabase.get(), "main", SQLITE_FCNTL_LAST_ERRNO,
                                                           &cause) == SQLITE_OK;
    if (!isOpen && mpDatabase) cause = sqlite3_system_errno(mpDatabase.get());
    if (cause != 0) throw DatabaseError(mPath + ": " + std::generic_category().message(cause));
    throw DatabaseError(mPath + ": " + text);
}

SqliteStatement::~SqliteStatement() {
    // A statement that is not reset would keep its transaction open.
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

int SqliteStatement::ColumnCount() const { return sqlite3_column_count(mpStatement.get()); }

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
