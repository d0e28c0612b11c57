#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

struct sqlite3;
struct sqlite3_stmt;

// The parts of SQLite that the library needs. Failures throw DatabaseError, or std::bad_alloc when memory runs out.
namespace qel {

class Database;

/// A statement that is prepared when it first runs, and then kept.
class QELLIB10_INTERNAL_API Statement {
public:
    explicit Statement(std::string sql) : m_sql(std::move(sql)) {}

private:
    friend class Query;
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    sqlite3_stmt* Prepared(const Database& database);

    std::string m_sql;
    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
};

/// Called while others use a database: waits a little. It may only throw std::bad_alloc, which gives up.
/// @return false to give up
using DatabaseWait = std::function<bool()>;

enum class DatabaseOpening {
    kExisting,  // for reading only if it cannot be written
    kCreating,  // creates an empty one if it is missing
    kReading,   // does not change it
};

/// A database file with its only connection, for one thread at a time: each commit is on disk, foreign keys. Its
/// statements must be destroyed before it.
class QELLIB10_INTERNAL_API Database {
public:
    /// Opens the file at @p posixPath.
    /// @param wait for other programs; without it each step waits for ten seconds at most
    Database(const std::string& posixPath, DatabaseOpening opening, DatabaseWait wait = {});
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs statements that return no rows.
    void Run(const char* sql);
    /// The row that was inserted last.
    std::int64_t LastId() const;
    /// False between BEGIN and COMMIT or ROLLBACK.
    bool IsIdle() const;

private:
    friend class Statement;
    struct Closer {
        void operator()(sqlite3* database) const;
    };

    static int OnBusy(void* self, int) noexcept;

    DatabaseWait m_wait;
    std::unique_ptr<sqlite3, Closer> m_database;
};

/// One run of a statement. Bound texts and bytes must live as long as it does; texts read from it are valid
/// until its next step.
///
///     Query query(database, statement);
///     query.Bind(id).Bind(fold);
///     while (query.Step()) Use(query.Text(0));
class QELLIB10_INTERNAL_API Query {
public:
    Query(const Database& database, Statement& statement);
    /// Of a statement that is prepared for this run alone.
    Query(const Database& database, const char* sql);
    ~Query();
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    /// Sets the next parameter, starting with the first.
    Query& Bind(std::int64_t number);
    Query& Bind(std::string_view text);
    Query& BindBytes(std::span<const std::byte> bytes);
    Query& BindNull();

    /// @return whether there is a row
    bool Step();
    /// Runs a statement that returns no rows.
    void Run() { Step(); }

    std::int64_t Number(int column) const;    ///< 0 for null
    std::string_view Text(int column) const;  ///< or bytes; empty for null
    /// Copies bytes of exactly the size of @p out. @return false when the value has another size
    bool Bytes(int column, std::span<std::byte> out) const;

private:
    void Check(int result) const;

    std::optional<Statement> m_own;  // of this run alone
    sqlite3_stmt* m_statement;
    int m_bound = 0;
};

/// Combines changes into one; without Commit nothing has happened. Other programs wait with theirs meanwhile.
class QELLIB10_INTERNAL_API Transaction {
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    Database& m_database;
};

}  // namespace qel
