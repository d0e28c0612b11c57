#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

// The parts of SQLite that the registry needs. Failures throw RegistryError.
namespace qel {

/// A statement that is prepared when it first runs, and then kept.
class Statement {
public:
    explicit Statement(std::string sql) : m_sql(std::move(sql)) {}

private:
    friend class Query;
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };

    std::string m_sql;
    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
};

/// Called while others use a database: waits a little. It may only throw std::bad_alloc, which gives up.
/// @return false to give up
using DatabaseWait = std::function<bool()>;

/// A database file with its only connection, for one thread at a time: rollback journal, each commit is on disk,
/// foreign keys. Its statements must be destroyed before it.
class Database {
public:
    /// Opens the file at @p posixPath; for reading only if it cannot be written.
    /// @param create creates an empty one if it is missing
    Database(const std::string& posixPath, bool create, DatabaseWait wait);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs statements that return no rows.
    void Run(const char* sql);
    /// False between BEGIN and COMMIT or ROLLBACK.
    bool IsIdle() const;

private:
    friend class Query;
    struct Closer {
        void operator()(sqlite3* database) const;
    };

    static int OnBusy(void* self, int) noexcept;

    DatabaseWait m_wait;
    std::unique_ptr<sqlite3, Closer> m_database;
};

/// One run of a statement. Bound texts must live as long as it does; texts read from it are valid until its next step.
///
///     Query query(database, statement);
///     query.Bind(id).Bind(fold);
///     while (query.Step()) Use(query.Text(0));
class Query {
public:
    Query(const Database& database, Statement& statement);
    ~Query();
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    /// Sets the next parameter, starting with the first.
    Query& Bind(std::int64_t number);
    Query& Bind(std::string_view text);
    Query& BindBytes(std::string_view bytes);

    /// @return whether there is a row
    bool Step();

    std::int64_t Number(int column) const;
    std::string_view Text(int column) const;  ///< or bytes

private:
    void Check(int result) const;

    sqlite3_stmt* m_statement;
    int m_bound = 0;
};

}  // namespace qel
