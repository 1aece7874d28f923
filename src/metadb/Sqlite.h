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

/// An error reported by SQLite, or invalid content of a database. The text names the file.
class DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The file does not exist, cannot be opened or is not a regular file.
class UnreadableFile : public DatabaseError {
public:
    using DatabaseError::DatabaseError;
};

class SqliteStatement;

/// An open database. Files are not trusted: no code that a file may contain is run; triggers, views and
/// extensions are disabled.
class Sqlite {
public:
    /// An empty database in memory.
    Sqlite();
    /// Opens a file read-only. Accompanying files, such as journals, are ignored. Throws `UnreadableFile`.
    explicit Sqlite(const std::string& path);

    void Execute(const char* sql);
    /// The number that the statement returns; 0 if it returns no row.
    std::int64_t Number(const char* sql);
    /// Prepares a statement. `sql` must be a string constant: finished statements are kept and reused, and
    /// are found by this pointer.
    SqliteStatement Prepare(const char* sql);
    std::int64_t LastRowId() const;
    /// The bytes of a file with this database.
    std::string Serialize() const;

    /// Throws `DatabaseError` with SQLite's message about the last failure.
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

    void Open(const std::string& uri, int flags);

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

    /// Resets the statement and binds the arguments to its parameters, in order.
    template <typename... Values>
    SqliteStatement& Bind(const Values&... values) {
        Reset();
        int position = 0;
        (BindOne(++position, values), ...);
        return *this;
    }
    /// Steps to the next row; returns false if there is none.
    bool Step();
    /// Runs a statement that returns no rows.
    void Run() { static_cast<void>(Step()); }

    std::string Text(int column) const;
    std::int64_t Number(int column) const;
    /// The number as this type. Throws `DatabaseError` if it does not fit.
    template <typename Type>
    Type NumberAs(int column) const {
        const std::int64_t number = Number(column);
        if (!std::in_range<Type>(number))
            throw DatabaseError(mDatabase.Path() + ": a number is out of range");
        return static_cast<Type>(number);
    }
    std::int32_t Number32(int column) const { return NumberAs<std::int32_t>(column); }
    int ColumnCount() const;

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
