#include "database.h"

#include <fcntl.h>
#include <sqlite3.h>

#include <algorithm>

#include <qellib10/qellib10.h>

#include "store_error.h"

namespace userstore {
namespace {

constexpr int kBusyLimit = 10'000;  // ms

constexpr const char* kSettings =
    "PRAGMA foreign_keys = ON;"
    "PRAGMA synchronous = EXTRA;"
    "PRAGMA secure_delete = ON;"
    "PRAGMA trusted_schema = OFF;";

}  // namespace

void Database::Closer::operator()(sqlite3* database) const { ::sqlite3_close(database); }
void Query::Finalizer::operator()(sqlite3_stmt* statement) const { ::sqlite3_finalize(statement); }

Database::Database(const std::string& posixPath, bool isReadOnly) {
    // Made here for its mode, which the journal takes over. An existing file is not opened: closing it again would drop
    // the locks of another connection in this process.
    qel::Descriptor made;
    if (!isReadOnly) made.Reset(::open(posixPath.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600));

    sqlite3* database = nullptr;
    const int mode = isReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    const int result = ::sqlite3_open_v2(posixPath.c_str(), &database, mode, nullptr);
    m_database.reset(database);  // also after a failure
    if (result != SQLITE_OK) throw StoreError(posixPath + ": " + ::sqlite3_errstr(result));
    ::sqlite3_busy_timeout(database, kBusyLimit);
    ::sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    Run(kSettings);
}

void Database::Run(const char* sql) {
    if (::sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw StoreError(::sqlite3_errmsg(m_database.get()));
    }
}

std::int64_t Database::LastId() const { return ::sqlite3_last_insert_rowid(m_database.get()); }

Query::Query(Database& database, std::string_view sql) : m_database(database.m_database.get()) {
    sqlite3_stmt* prepared = nullptr;
    Check(::sqlite3_prepare_v2(m_database, sql.data(), static_cast<int>(sql.size()), &prepared, nullptr));
    m_statement.reset(prepared);
}

void Query::Check(int result) const {
    if (result != SQLITE_OK) throw StoreError(::sqlite3_errmsg(m_database));
}

Query& Query::Bind(std::int64_t number) {
    Check(::sqlite3_bind_int64(m_statement.get(), ++m_bound, number));
    return *this;
}

Query& Query::Bind(std::string_view text) {
    const char* bytes = text.data() != nullptr ? text.data() : "";  // a null pointer would be no text at all
    Check(::sqlite3_bind_text64(m_statement.get(), ++m_bound, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8));
    return *this;
}

Query& Query::Bind(std::span<const unsigned char> bytes) {
    Check(::sqlite3_bind_blob64(m_statement.get(), ++m_bound, bytes.data(), bytes.size(), SQLITE_STATIC));
    return *this;
}

Query& Query::BindNull() {
    Check(::sqlite3_bind_null(m_statement.get(), ++m_bound));
    return *this;
}

bool Query::Step() {
    const int result = ::sqlite3_step(m_statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) throw StoreError(::sqlite3_errmsg(m_database));
    return result == SQLITE_ROW;
}

std::int64_t Query::Number(int column) const { return ::sqlite3_column_int64(m_statement.get(), column); }

std::string_view Query::Text(int column) const {
    const void* bytes = ::sqlite3_column_blob(m_statement.get(), column);
    const int size = ::sqlite3_column_bytes(m_statement.get(), column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

bool Query::Bytes(int column, std::span<unsigned char> out) const {
    const std::string_view found = Text(column);
    if (found.size() != out.size()) return false;
    std::ranges::copy(found, out.begin());
    return true;
}

Transaction::Transaction(Database& database) : m_database(database) { database.Run("BEGIN IMMEDIATE"); }

Transaction::~Transaction() {
    if (!m_isOpen) return;
    try {
        m_database.Run("ROLLBACK");
    } catch (const StoreError&) {
        // Where SQLite has rolled back by itself there is nothing left to do.
    }
}

void Transaction::Commit() {
    m_database.Run("COMMIT");
    m_isOpen = false;
}

}  // namespace userstore
