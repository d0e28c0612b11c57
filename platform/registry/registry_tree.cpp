#include "qellib10/platform/registry/registry_tree.h"

#include <algorithm>
#include <span>
#include <utility>

#include "qellib10/platform/registry/registry_error.h"

namespace qel {
namespace {

constexpr std::size_t kJoined = 8;  // names of a path that one statement looks up
constexpr std::int64_t kVersion = 1;

// A key's number is never used again, so that a handle of a deleted key finds nothing.
constexpr const char* kSchema =
    "CREATE TABLE reg_key("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " parent INTEGER REFERENCES reg_key(id) ON DELETE CASCADE,"
    " depth INTEGER NOT NULL CHECK(depth <= 512),"
    " fold TEXT NOT NULL, name TEXT NOT NULL, class TEXT NOT NULL,"
    " UNIQUE(parent, fold)) STRICT;"
    "CREATE TABLE reg_value("
    " id INTEGER PRIMARY KEY,"
    " key INTEGER NOT NULL REFERENCES reg_key(id) ON DELETE CASCADE,"
    " fold TEXT NOT NULL, name TEXT NOT NULL, type INTEGER NOT NULL, data BLOB NOT NULL,"
    " UNIQUE(key, fold)) STRICT;"
    "INSERT INTO reg_key(id, depth, fold, name, class) VALUES (1, 0, '', '', '');"
    "PRAGMA user_version = 1;";

// An unchanged value is not written to disk.
constexpr const char* kReplace =
    " ON CONFLICT(key, fold) DO UPDATE SET type = excluded.type, data = excluded.data"
    " WHERE type <> excluded.type OR data <> excluded.data";

std::string Numbered(const char* name, std::size_t number) { return name + std::to_string(number); }

// A join that follows a path of @p names names: a chain of look-ups. ?1 is the first key, then come the folded names.
std::string Chain(std::size_t names) {
    std::string sql = "reg_key k0";
    for (std::size_t i = 1; i <= names; ++i) sql += Numbered(" CROSS JOIN reg_key k", i);
    return sql;
}

std::string ChainCondition(std::size_t names) {
    std::string sql = " WHERE k0.id = ?1";
    for (std::size_t i = 1; i <= names; ++i) {
        sql += Numbered(" AND k", i) + Numbered(".parent = k", i - 1) + ".id";
        sql += Numbered(" AND k", i) + Numbered(".fold = ?", i + 1);
    }
    return sql;
}

Statement FindStatement(std::size_t names) {
    return Statement("SELECT " + Numbered("k", names) + ".id FROM " + Chain(names) + ChainCondition(names));
}

Statement ReadStatement(std::size_t names) {
    return Statement("SELECT v.type, v.data FROM " + Chain(names) + " CROSS JOIN reg_value v" + ChainCondition(names) +
                     Numbered(" AND v.key = k", names) + Numbered(".id AND v.fold = ?", names + 2));
}

struct Child {
    RegistryKeyId key;
    std::string fold, name, className;
};

}  // namespace

RegistryTree::RegistryTree(const std::string& posixPath, bool create, DatabaseWait wait)
    : m_database(posixPath, create ? DatabaseOpening::kCreating : DatabaseOpening::kExisting, std::move(wait)),
      m_parent("SELECT parent FROM reg_key WHERE id = ?"),
      m_children("SELECT id, fold, name, class FROM reg_key WHERE parent = ? ORDER BY id"),
      m_values("SELECT name, type, data FROM reg_value WHERE key = ? ORDER BY id"),
      m_copyValues(
          "INSERT INTO reg_value(key, fold, name, type, data)"
          " SELECT ?2, fold, name, type, data FROM reg_value WHERE key = ?1 ORDER BY id" +
          std::string(kReplace)),
      m_makeChild(
          "INSERT INTO reg_key(parent, depth, fold, name, class)"
          " SELECT id, depth + 1, ?2, ?3, ?4 FROM reg_key WHERE id = ?1 RETURNING id"),
      m_write("INSERT INTO reg_value(key, fold, name, type, data) VALUES (?, ?, ?, ?, ?)" + std::string(kReplace)),
      m_delete("DELETE FROM reg_key WHERE id = ?") {
    m_database.Run("PRAGMA journal_mode = DELETE");
    for (std::size_t names = 0; names <= kJoined; ++names) {
        m_find.push_back(FindStatement(names));
        m_read.push_back(ReadStatement(names));
    }
}

bool RegistryTree::IsMade() {
    Statement version("PRAGMA user_version");
    Query query(m_database, version);
    const std::int64_t number = query.Step() ? query.Number(0) : 0;
    if (number < 0 || number > kVersion) throw RegistryError(kRegistryDamaged);
    return number == kVersion;
}

void RegistryTree::Make() { m_database.Run(kSchema); }

void RegistryTree::RollBack() {
    if (!m_database.IsIdle()) m_database.Run("ROLLBACK");
}

std::optional<RegistryKeyId> RegistryTree::FindPart(RegistryKeyId from, const RegistryPath& path, std::size_t first,
                                                    std::size_t count) {
    Query query(m_database, m_find[count]);
    query.Bind(from);
    for (std::size_t i = first; i < first + count; ++i) query.Bind(path.Fold(i));
    if (!query.Step()) return std::nullopt;
    return query.Number(0);
}

// Follows the names of @p path, starting at @p first, while more than @p rest are left.
std::optional<RegistryKeyId> RegistryTree::Follow(RegistryKeyId from, const RegistryPath& path, std::size_t& first,
                                                  std::size_t rest) {
    std::optional<RegistryKeyId> key = from;
    while (key && path.Size() - first > rest) {
        const std::size_t count = std::min(path.Size() - first, kJoined);
        key = FindPart(*key, path, first, count);
        first += count;
    }
    return key;
}

std::optional<RegistryKeyId> RegistryTree::Find(RegistryKeyId from, const RegistryPath& path) {
    if (path.Size() == 0) return FindPart(from, path, 0, 0);
    std::size_t first = 0;
    return Follow(from, path, first, 0);
}

RegistryKeyId RegistryTree::Create(RegistryKeyId from, const RegistryPath& path, std::string_view className) {
    if (const std::optional<RegistryKeyId> existing = Find(from, path)) return *existing;
    if (path.Size() == 0) throw RegistryError(kRegistryKeyDeleted);
    RegistryKeyId key = from;
    for (std::size_t i = 0; i < path.Size(); ++i) {
        const std::optional<RegistryKeyId> child = FindChild(key, path.Fold(i));
        key = child ? *child : MakeChild(key, path.Fold(i), path.Name(i), className);
    }
    return key;
}

std::optional<RegistryKeyId> RegistryTree::FindChild(RegistryKeyId parent, std::string_view fold) {
    Query query(m_database, m_find[1]);
    if (!query.Bind(parent).Bind(fold).Step()) return std::nullopt;
    return query.Number(0);
}

RegistryKeyId RegistryTree::MakeChild(RegistryKeyId parent, std::string_view fold, std::string_view name,
                                      std::string_view className) {
    Query query(m_database, m_makeChild);
    query.Bind(parent).Bind(fold).Bind(name).Bind(className);
    if (!query.Step()) throw RegistryError(kRegistryKeyDeleted);
    const RegistryKeyId key = query.Number(0);
    query.Step();
    return key;
}

std::optional<RegistryValue> RegistryTree::Read(RegistryKeyId from, const RegistryPath& path,
                                                const RegistryName& name) {
    std::size_t first = 0;
    const std::optional<RegistryKeyId> start = Follow(from, path, first, kJoined);
    if (!start) return std::nullopt;
    Query query(m_database, m_read[path.Size() - first]);
    query.Bind(*start);
    for (std::size_t i = first; i < path.Size(); ++i) query.Bind(path.Fold(i));
    query.Bind(name.fold);
    if (!query.Step()) return std::nullopt;
    return RegistryValue{static_cast<DWORD>(query.Number(0)), std::string(query.Text(1))};
}

RegistryContents RegistryTree::List(RegistryKeyId key) {
    RegistryContents contents;
    Query keys(m_database, m_children);
    for (keys.Bind(key); keys.Step();) contents.keys.emplace_back(keys.Text(2));
    Query values(m_database, m_values);
    for (values.Bind(key); values.Step();) {
        contents.values.emplace_back(values.Text(0),
                                     RegistryValue{static_cast<DWORD>(values.Number(1)), std::string(values.Text(2))});
    }
    return contents;
}

void RegistryTree::Write(RegistryKeyId key, const RegistryName& name, const RegistryValue& value) {
    Query query(m_database, m_write);
    query.Bind(key)
        .Bind(name.fold)
        .Bind(name.name)
        .Bind(std::int64_t{value.type})
        .BindBytes(std::as_bytes(std::span(value.data)));
    query.Step();
}

void RegistryTree::Delete(RegistryKeyId key) {
    Query query(m_database, m_delete);
    query.Bind(key).Step();
}

bool RegistryTree::IsWithin(RegistryKeyId key, RegistryKeyId above) {
    for (std::size_t level = 0; key != above; ++level) {
        Query query(m_database, m_parent);
        const bool hasParent = query.Bind(key).Step() && query.Number(0) != 0;
        if (!hasParent || level > RegistryPath::kMaxNames) return false;
        key = query.Number(0);
    }
    return true;
}

void RegistryTree::Copy(RegistryKeyId from, RegistryKeyId to) {
    Query(m_database, m_copyValues).Bind(from).Bind(to).Step();
    std::vector<Child> children;
    {
        Query query(m_database, m_children);
        query.Bind(from);
        while (query.Step()) {
            children.push_back(
                {query.Number(0), std::string(query.Text(1)), std::string(query.Text(2)), std::string(query.Text(3))});
        }
    }
    for (const Child& child : children) {
        const std::optional<RegistryKeyId> there = FindChild(to, child.fold);
        Copy(child.key, there ? *there : MakeChild(to, child.fold, child.name, child.className));
    }
}

}  // namespace qel
