#include "qellib10/store/accounts.h"

#include <algorithm>

#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/store/store_error.h"

namespace qel {
namespace {

constexpr std::size_t kLongestName = 64;           // bytes
constexpr std::int64_t kApplication = 0x51555352;  // marks the file as ours
constexpr std::int64_t kVersion = 1;

// AUTOINCREMENT: the ID of a deleted user is never chosen again. An application may give it to another.
constexpr const char* kTables =
    "CREATE TABLE users("
    "  id INTEGER PRIMARY KEY AUTOINCREMENT CHECK(id BETWEEN -2147483648 AND 2147483647 AND id <> 0),"
    "  name TEXT NOT NULL, folded_name TEXT NOT NULL UNIQUE, full_name TEXT NOT NULL,"
    "  maker INTEGER NOT NULL, manager INTEGER NOT NULL, show INTEGER NOT NULL,"
    "  salt BLOB, hash BLOB, passes INTEGER, memory INTEGER);"
    "CREATE TABLE functions("
    "  user INTEGER NOT NULL REFERENCES users ON DELETE CASCADE, place INTEGER NOT NULL,"
    "  id INTEGER NOT NULL, name TEXT NOT NULL, level INTEGER NOT NULL, PRIMARY KEY(user, place)) WITHOUT ROWID;"
    "CREATE TABLE attempts(user INTEGER PRIMARY KEY, refused INTEGER NOT NULL, locked_until INTEGER NOT NULL);"
    "CREATE TABLE automatic_logon("
    "  row INTEGER PRIMARY KEY CHECK(row = 1), is_on INTEGER NOT NULL,"
    "  user INTEGER REFERENCES users ON DELETE SET NULL, token BLOB);"
    "INSERT INTO automatic_logon VALUES(1, 0, NULL, NULL);"
    "PRAGMA user_version = 1;";

std::int64_t Ask(Database& database, const char* sql) {
    Query query(database, sql);
    return query.Step() ? query.Number(0) : 0;
}

std::string Utf8(const CString& text) { return ToUtf8(text.View()); }
CString Text(std::string_view utf8) { return CString(std::string_view(FromUtf8(utf8))); }

int Int(std::int64_t number) {
    if (number != static_cast<int>(number)) throw StoreError(FailureKind::kData, "an account has too large a number");
    return static_cast<int>(number);
}

void RequireName(std::string_view name) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    if (name.empty() || name.size() > kLongestName || std::ranges::any_of(name, isControl)) {
        throw StoreError(FailureKind::kArgument, "this cannot be a user's name");
    }
}

void StoreFunctions(Database& database, UserId user, const CUserInfo& record) {
    Query(database, "DELETE FROM functions WHERE user = ?").Bind(user).Run();
    CFunctionSecurity levels = record.GetSecurity();
    levels.SetMakerParameter(0);  // privileges hide the levels
    levels.SetManagerParameter(0);
    for (int i = 0; i < levels.GetFunctionIDCount(); ++i) {
        const int id = levels.GetFunctionID(i);
        const std::string name = Utf8(levels.GetFunctionName(id));
        Query insert(database, "INSERT INTO functions VALUES(?, ?, ?, ?, ?)");
        insert.Bind(user).Bind(i).Bind(id).Bind(name).Bind(levels.GetFunctionSecurity(id)).Run();
    }
}

CFunctionSecurity ReadFunctions(Database& database, UserId user) {
    CFunctionSecurity security;
    Query query(database, "SELECT id, name, level FROM functions WHERE user = ? ORDER BY place");
    query.Bind(user);
    while (query.Step()) {
        security.AddFunctionInfo(CFunctionInfo(Int(query.Number(0)), Text(query.Text(1)), Int(query.Number(2))));
    }
    return security;
}

}  // namespace

void PrepareTables(Database& database) {
    Transaction transaction(database);
    if (Ask(database, "PRAGMA application_id") == 0 && Ask(database, "SELECT count(*) FROM sqlite_schema") == 0) {
        database.Run(kTables);
        database.Run(("PRAGMA application_id = " + std::to_string(kApplication)).c_str());
    }
    RequireTables(database);
    transaction.Commit();
}

void RequireTables(Database& database) {
    const bool isOurs = Ask(database, "PRAGMA application_id") == kApplication;
    if (!isOurs || Ask(database, "PRAGMA user_version") != kVersion)
        throw StoreError(FailureKind::kData, "the file is not a user store of this version");
}

void RequireSound(Database& database) {
    Query check(database, "PRAGMA integrity_check(1)");
    check.Step();
    const std::string_view found = check.Text(0);  // of several lines, the last one is the finding
    if (found != "ok") throw StoreError(FailureKind::kData, std::string(found.substr(found.rfind('\n') + 1)));
    if (Query(database, "PRAGMA foreign_key_check").Step())
        throw StoreError(FailureKind::kData, "there are data of a user who was deleted");
}

std::string FoldedName(const CString& name) { return ToUtf8(FoldName(name.View())); }

UserId FindUser(Database& database, const CString& name) {
    const std::string folded = FoldedName(name);
    Query query(database, "SELECT id FROM users WHERE folded_name = ?");
    return query.Bind(folded).Step() ? query.Number(0) : kNobody;
}

std::vector<CString> UserNames(Database& database) {
    std::vector<CString> names;
    Query query(database, "SELECT name FROM users ORDER BY folded_name");
    while (query.Step()) names.push_back(Text(query.Text(0)));
    return names;
}

std::optional<CUserInfo> ReadUser(Database& database, UserId user) {
    Query query(database, "SELECT name, full_name, maker, manager, show FROM users WHERE id = ?");
    if (!query.Bind(user).Step()) return std::nullopt;
    CFunctionSecurity security = ReadFunctions(database, user);
    security.SetMakerParameter(Int(query.Number(2)));
    security.SetManagerParameter(Int(query.Number(3)));
    security.SetShow(Int(query.Number(4)));
    CUserInfo record;
    record.SetUserID(Int(user));
    record.SetUsername(Text(query.Text(0)));
    record.SetUserFullname(Text(query.Text(1)));
    record.SetSecurity(security);
    return record;
}

UserId AddAccount(Database& database, const CUserInfo& record) {
    RequireName(record.GetUsername().View());
    const std::string name = Utf8(record.GetUsername()), folded = FoldedName(record.GetUsername());
    Query insert(
        database,
        "INSERT INTO users(id, name, folded_name, full_name, maker, manager, show) VALUES(?, ?, ?, '', 0, 0, 0)");
    record.GetUserID() != 0 ? insert.Bind(record.GetUserID()) : insert.BindNull();
    insert.Bind(name).Bind(folded).Run();
    const UserId user = database.LastId();
    UpdateAccount(database, user, record);
    return user;
}

void UpdateAccount(Database& database, UserId user, const CUserInfo& record) {
    const std::string fullName = Utf8(record.GetUserFullname());
    Query update(database, "UPDATE users SET full_name = ?, maker = ?, manager = ?, show = ? WHERE id = ?");
    update.Bind(fullName).Bind(record.GetMakerFlag()).Bind(record.GetManagerFlag());
    update.Bind(record.GetSecurity().GetShow()).Bind(user).Run();
    StoreFunctions(database, user, record);
}

void DeleteAccount(Database& database, UserId user) {
    Query(database, "DELETE FROM users WHERE id = ?").Bind(user).Run();
}

std::optional<PasswordHash> ReadPassword(Database& database, UserId user) {
    Query query(database, "SELECT salt, hash, passes, memory FROM users WHERE id = ?");
    PasswordHash hash;
    if (!query.Bind(user).Step() || !query.Bytes(0, hash.salt) || !query.Bytes(1, hash.hash)) return std::nullopt;
    hash.cost = {static_cast<std::uint64_t>(query.Number(2)), static_cast<std::uint64_t>(query.Number(3))};
    return hash;
}

PasswordCost HighestCost(Database& database, const PasswordCost& usual) {
    const auto work = [](const PasswordCost& cost) { return cost.passes * cost.memory; };
    std::optional<PasswordCost> highest;
    Query query(database, "SELECT DISTINCT passes, memory FROM users WHERE hash IS NOT NULL");
    while (query.Step()) {
        const PasswordCost cost{static_cast<std::uint64_t>(query.Number(0)),
                                static_cast<std::uint64_t>(query.Number(1))};
        if (IsUsable(cost) && (!highest || work(cost) > work(*highest))) highest = cost;
    }
    return highest.value_or(usual);
}

void StorePassword(Database& database, UserId user, const PasswordHash& hash) {
    Query update(database, "UPDATE users SET salt = ?, hash = ?, passes = ?, memory = ? WHERE id = ?");
    update.BindBytes(hash.salt).BindBytes(hash.hash).Bind(static_cast<std::int64_t>(hash.cost.passes));
    update.Bind(static_cast<std::int64_t>(hash.cost.memory)).Bind(user).Run();
}

bool HasAdministrator(Database& database) {
    return Ask(database, "SELECT count(*) FROM users WHERE (maker <> 0 OR manager <> 0) AND hash IS NOT NULL") != 0;
}

AutomaticLogon ReadAutomaticLogon(Database& database) {
    Query query(database, "SELECT is_on, user, token FROM automatic_logon");
    AutomaticLogon found;
    if (!query.Step()) return found;
    found.isOn = Int(query.Number(0));
    if (query.Bytes(2, found.token)) found.user = query.Number(1);
    return found;
}

void SwitchAutomaticLogon(Database& database, int isOn) {
    Query(database, "UPDATE automatic_logon SET is_on = ?").Bind(isOn).Run();
}

void StoreAutomaticUser(Database& database, UserId user, const TokenDigest& token) {
    Query update(database, "UPDATE automatic_logon SET user = ?, token = ?");
    if (user == kNobody) {
        update.BindNull().BindNull().Run();
    } else {
        update.Bind(user).BindBytes(token).Run();
    }
}

}  // namespace qel
