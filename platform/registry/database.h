#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

// SQLite, as far as the registry needs it. What fails throws RegistryError.
namespace qel {

/// A statement that is prepared when it first runs and kept.
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

/// Called while others use a database: waits a little. It may throw std::bad_alloc alone, which gives up.
/// @return false to give up
using DatabaseWait = std::function<bool()>;

/// A database file with its one connection, for one thread at a time: rollback journal, each commit on the disk,
/// foreign keys. Its statements are destroyed before it.
class Database {
public:
    /// Opens the file at @p posixPath, for reading only where it cannot be written.
    /// @param create makes an empty one when it is missing
    Database(const std::string& posixPath, bool create, DatabaseWait wait);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs statements that give no rows.
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

/// One run of a statement. Bound texts must live as long as it does; what it reads lives until its next step.
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

    /// The next parameter, from the first on.
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
