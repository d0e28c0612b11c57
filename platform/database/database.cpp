#include "qellib10/platform/database/database.h"

#include <sqlite3.h>

#include <algorithm>
#include <new>
#include <utility>

#include "qellib10/platform/database/database_error.h"

namespace qel {
namespace {

constexpr int kPatience = 10'000;  // ms

constexpr const char* kSettings =
    "PRAGMA foreign_keys = ON;"
    "PRAGMA synchronous = EXTRA;"  // else the journal could undo a commit, because its deletion is not flushed
    "PRAGMA trusted_schema = OFF;";

DatabaseFault FaultOf(int error) {
    if (error == SQLITE_CONSTRAINT_FOREIGNKEY) return DatabaseFault::kForeignKey;
    switch (error & 0xFF) {
        case SQLITE_CONSTRAINT:
        case SQLITE_TOOBIG:
            return DatabaseFault::kValue;
        case SQLITE_PERM:
        case SQLITE_READONLY:
        case SQLITE_CANTOPEN:
            return DatabaseFault::kAccess;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return DatabaseFault::kBusy;
        case SQLITE_FULL:
            return DatabaseFault::kDiskFull;
        case SQLITE_IOERR:
            return DatabaseFault::kIo;
        default:
            return DatabaseFault::kDamaged;
    }
}

[[noreturn]] void Throw(int error, const std::string& text) {
    if (error == SQLITE_NOMEM) throw std::bad_alloc();
    throw DatabaseError(FaultOf(error), text);
}

int FlagsOf(DatabaseOpening opening) {
    constexpr int kAlways = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    switch (opening) {
        case DatabaseOpening::kReading:
            return kAlways | SQLITE_OPEN_READONLY;
        case DatabaseOpening::kCreating:
            return kAlways | SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
        default:
            return kAlways | SQLITE_OPEN_READWRITE;
    }
}

}  // namespace

DatabaseError::~DatabaseError() = default;

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const { ::sqlite3_finalize(statement); }
void Database::Closer::operator()(sqlite3* database) const { ::sqlite3_close(database); }

Database::Database(const std::string& posixPath, DatabaseOpening opening, DatabaseWait wait) : m_wait(std::move(wait)) {
    sqlite3* database = nullptr;
    const int result = ::sqlite3_open_v2(posixPath.c_str(), &database, FlagsOf(opening), nullptr);
    m_database.reset(database);  // also after a failure
    if (result != SQLITE_OK) Throw(result, posixPath + ": " + ::sqlite3_errstr(result));
    m_wait ? ::sqlite3_busy_handler(database, OnBusy, this) : ::sqlite3_busy_timeout(database, kPatience);
    ::sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    Run(kSettings);
}

// SQLite is written in C: no exception may pass through it. Without memory to wait, the database counts as busy.
int Database::OnBusy(void* self, int) noexcept {
    try {
        return static_cast<Database*>(self)->m_wait() ? 1 : 0;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

void Database::Run(const char* sql) {
    if (const int result = ::sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr); result != SQLITE_OK) {
        Throw(result, ::sqlite3_errmsg(m_database.get()));
    }
}

std::int64_t Database::LastId() const { return ::sqlite3_last_insert_rowid(m_database.get()); }
bool Database::IsIdle() const { return ::sqlite3_get_autocommit(m_database.get()) != 0; }

sqlite3_stmt* Statement::Prepared(const Database& database) {
    if (!m_statement) {
        sqlite3* const connection = database.m_database.get();
        sqlite3_stmt* prepared = nullptr;
        const int result = ::sqlite3_prepare_v3(connection, m_sql.data(), static_cast<int>(m_sql.size()),
                                                SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
        if (result != SQLITE_OK) Throw(result, ::sqlite3_errmsg(connection));
        m_statement.reset(prepared);
    }
    return m_statement.get();
}

Query::Query(const Database& database, Statement& statement) : m_statement(statement.Prepared(database)) {}
Query::Query(const Database& database, const char* sql) : m_own(sql), m_statement(m_own->Prepared(database)) {}

// Its result repeats the failure of the last step.
Query::~Query() { ::sqlite3_reset(m_statement); }

void Query::Check(int result) const {
    if (result != SQLITE_OK) Throw(result, ::sqlite3_errmsg(::sqlite3_db_handle(m_statement)));
}

Query& Query::Bind(std::int64_t number) {
    Check(::sqlite3_bind_int64(m_statement, ++m_bound, number));
    return *this;
}

Query& Query::Bind(std::string_view text) {
    // A null pointer would mean NULL instead of a text.
    const char* bytes = text.data() != nullptr ? text.data() : "";
    Check(::sqlite3_bind_text64(m_statement, ++m_bound, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

Query& Query::BindBytes(std::span<const std::byte> bytes) {
    const void* data = bytes.data() != nullptr ? static_cast<const void*>(bytes.data()) : "";
    Check(::sqlite3_bind_blob64(m_statement, ++m_bound, data, bytes.size(), SQLITE_STATIC));
    return *this;
}

Query& Query::BindNull() {
    Check(::sqlite3_bind_null(m_statement, ++m_bound));
    return *this;
}

bool Query::Step() {
    const int result = ::sqlite3_step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) Check(result);
    return result == SQLITE_ROW;
}

std::int64_t Query::Number(int column) const { return ::sqlite3_column_int64(m_statement, column); }

std::string_view Query::Text(int column) const {
    const void* bytes = ::sqlite3_column_blob(m_statement, column);
    const int size = ::sqlite3_column_bytes(m_statement, column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

bool Query::Bytes(int column, std::span<std::byte> out) const {
    const std::string_view found = Text(column);
    if (found.size() != out.size()) return false;
    std::ranges::copy(std::as_bytes(std::span(found)), out.begin());
    return true;
}

Transaction::Transaction(Database& database) : m_database(database) { database.Run("BEGIN IMMEDIATE"); }

Transaction::~Transaction() {
    if (m_database.IsIdle()) return;  // committed, or SQLite has rolled back by itself
    try {
        m_database.Run("ROLLBACK");
    } catch (const DatabaseError&) {
        // Closing the connection rolls it back as well.
    } catch (const std::bad_alloc&) {
    }
}

void Transaction::Commit() { m_database.Run("COMMIT"); }

}  // namespace qel
