#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

// SQLite, as far as the store needs it. What fails throws StoreError.
namespace userstore {

/// A database file with its one connection. Waits 10 seconds for other programs; deleted content is overwritten.
class Database {
public:
    /// Opens the file, or makes an empty one that only its owner can read. One that is read only must be there, and is
    /// left as it is.
    explicit Database(const std::string& posixPath, bool isReadOnly = false);

    /// Runs statements that give no rows.
    void Run(const char* sql);
    /// The row that was inserted last.
    std::int64_t LastId() const;

private:
    friend class Query;
    struct Closer {
        void operator()(sqlite3* database) const;
    };

    std::unique_ptr<sqlite3, Closer> m_database;
};

/// One run of a statement. Bound texts and bytes have to live as long as it does; what it reads lives until its next
/// step.
class Query {
public:
    Query(Database& database, std::string_view sql);

    /// The next parameter, from the first on.
    Query& Bind(std::int64_t number);
    Query& Bind(std::string_view text);
    Query& Bind(std::span<const unsigned char> bytes);
    Query& BindNull();

    /// @return whether there is a row
    bool Step();
    /// Runs a statement that gives no rows.
    void Run() { Step(); }

    std::int64_t Number(int column) const;  ///< 0 for null
    std::string_view Text(int column) const;
    /// Copies bytes of exactly the size of @p out. @return false when the value is no such bytes
    bool Bytes(int column, std::span<unsigned char> out) const;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    void Check(int result) const;

    sqlite3* m_database;
    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
    int m_bound = 0;
};

/// Changes that take place together, or without Commit not at all. Other programs wait with theirs meanwhile.
class Transaction {
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    Database& m_database;
    bool m_isOpen = true;
};

}  // namespace userstore
