#include "qellib10/platform/registry/database.h"

#include <sqlite3.h>

#include <new>
#include <utility>

#include "qellib10/platform/registry/registry_error.h"

namespace qel {
namespace {

constexpr const char* kSettings =
    "PRAGMA foreign_keys = ON;"
    "PRAGMA journal_mode = DELETE;"
    "PRAGMA synchronous = EXTRA;"  // else the journal could undo a commit, because its deletion is not flushed
    "PRAGMA trusted_schema = OFF;";

RegistryCode CodeOf(int error) {
    if (error == SQLITE_CONSTRAINT_FOREIGNKEY) return kRegistryKeyDeleted;
    switch (error & 0xFF) {
        case SQLITE_CONSTRAINT:
        case SQLITE_TOOBIG:
            return kRegistryInvalidParameter;
        case SQLITE_PERM:
        case SQLITE_READONLY:
        case SQLITE_CANTOPEN:
            return kRegistryAccessDenied;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return kRegistryBusy;
        case SQLITE_FULL:
            return kRegistryDiskFull;
        case SQLITE_IOERR:
            return kRegistryIoFailed;
        default:
            return kRegistryDamaged;
    }
}

[[noreturn]] void Throw(int error) {
    if (error == SQLITE_NOMEM) throw std::bad_alloc();
    throw RegistryError(CodeOf(error));
}

}  // namespace

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const { ::sqlite3_finalize(statement); }
void Database::Closer::operator()(sqlite3* database) const { ::sqlite3_close(database); }

Database::Database(const std::string& posixPath, bool create, DatabaseWait wait) : m_wait(std::move(wait)) {
    // The lock of the tree replaces SQLite's own.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    sqlite3* database = nullptr;
    const int result =
        ::sqlite3_open_v2(posixPath.c_str(), &database, flags | (create ? SQLITE_OPEN_CREATE : 0), nullptr);
    m_database.reset(database);  // also after a failure
    if (result != SQLITE_OK) Throw(result);
    ::sqlite3_busy_handler(database, OnBusy, this);
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
        Throw(result);
    }
}

bool Database::IsIdle() const { return ::sqlite3_get_autocommit(m_database.get()) != 0; }

Query::Query(const Database& database, Statement& statement) {
    if (!statement.m_statement) {
        sqlite3_stmt* prepared = nullptr;
        Check(::sqlite3_prepare_v3(database.m_database.get(), statement.m_sql.data(),
                                   static_cast<int>(statement.m_sql.size()), SQLITE_PREPARE_PERSISTENT, &prepared,
                                   nullptr));
        statement.m_statement.reset(prepared);
    }
    m_statement = statement.m_statement.get();
}

// Its result repeats the failure of the last step.
Query::~Query() { ::sqlite3_reset(m_statement); }

void Query::Check(int result) const {
    if (result != SQLITE_OK) Throw(result);
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

Query& Query::BindBytes(std::string_view bytes) {
    const char* data = bytes.data() != nullptr ? bytes.data() : "";
    Check(::sqlite3_bind_blob64(m_statement, ++m_bound, data, bytes.size(), SQLITE_STATIC));
    return *this;
}

bool Query::Step() {
    const int result = ::sqlite3_step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) Throw(result);
    return result == SQLITE_ROW;
}

std::int64_t Query::Number(int column) const { return ::sqlite3_column_int64(m_statement, column); }

std::string_view Query::Text(int column) const {
    const void* bytes = ::sqlite3_column_blob(m_statement, column);
    const int size = ::sqlite3_column_bytes(m_statement, column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

}  // namespace qel
