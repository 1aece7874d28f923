#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace VemoKesConfigTools::metadb {

/// What SQLite, or the content of a database, has to say against it. The text names the file.
class DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class SqliteStatement;

/// An open database file.
class Sqlite {
public:
    enum class Mode { ReadOnly, Create };

    /// Throws `DatabaseError`.
    Sqlite(const std::string& path, Mode mode);

    void Execute(const char* sql);
    /// The one number that the statement gives.
    std::int64_t Number(const char* sql);
    /// The text is a constant: a statement that is no longer used is kept, and serves the next who asks for
    /// it.
    SqliteStatement Prepare(const char* sql);
    std::int64_t LastRowId() const;

    /// Throws what SQLite says about the last failure.
    [[noreturn]] void Fail(int code) const;
    const std::string& Path() const { return mPath; }

private:
    friend class SqliteStatement;
    struct Closer {
        void operator()(sqlite3* database) const noexcept;
    };
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const noexcept;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

    std::string mPath;
    std::unique_ptr<sqlite3, Closer> mpDatabase;
    std::multimap<const char*, Statement> mIdle;
};

/// A prepared statement. Its database must outlive it.
class SqliteStatement {
public:
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;
    ~SqliteStatement();

    /// Binds the arguments to the places of the statement, from the first.
    template <typename... Values>
    SqliteStatement& Bind(const Values&... values) {
        Reset();
        int position = 0;
        (BindOne(++position, values), ...);
        return *this;
    }
    /// Steps to the next row; false when there is none.
    bool Step();
    /// Runs a statement that gives no rows.
    void Run() { static_cast<void>(Step()); }

    std::string Text(int column) const;
    std::int64_t Number(int column) const;
    std::int32_t Number32(int column) const { return static_cast<std::int32_t>(Number(column)); }

private:
    friend class Sqlite;
    SqliteStatement(Sqlite& database, const char* sql, Sqlite::Statement statement)
        : mDatabase(database), mSql(sql), mpStatement(std::move(statement)) {}
    void Reset();
    void BindOne(int position, std::int64_t value);
    void BindOne(int position, std::string_view value);

    Sqlite& mDatabase;
    const char* mSql;
    Sqlite::Statement mpStatement;
};

}  // namespace VemoKesConfigTools::metadb
