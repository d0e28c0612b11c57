#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/database/database.h"
#include "qellib10/platform/registry/registry.h"
#include "qellib10/platform/registry/registry_path.h"

namespace qel {

/// A key's number in its tree's database; no other key ever has the same.
using RegistryKeyId = std::int64_t;
inline constexpr RegistryKeyId kRegistryRootKey = 1;

/// The keys and values of a database. Texts are in UTF-8. Nothing is locked; changes belong between Begin and Commit.
/// Failures throw RegistryError.
class RegistryTree {
public:
    /// @param create creates an empty database if it is missing
    /// @param wait called while others use it; without it every operation then fails with 170
    RegistryTree(const std::string& posixPath, bool create, DatabaseWait wait);

    /// Whether the database contains a tree. @throws RegistryError 1009 if a newer version of the library created it
    bool IsMade();
    void Make();

    void Begin() { m_database.Run("BEGIN IMMEDIATE"); }
    void Commit() { m_database.Run("COMMIT"); }
    /// Also allowed if a failure has already rolled back.
    void RollBack();

    std::optional<RegistryKeyId> Find(RegistryKeyId from, const RegistryPath& path);
    RegistryKeyId Create(RegistryKeyId from, const RegistryPath& path, std::string_view className);
    std::optional<RegistryValue> Read(RegistryKeyId from, const RegistryPath& path, const RegistryName& name);
    RegistryContents List(RegistryKeyId key);
    void Write(RegistryKeyId key, const RegistryName& name, const RegistryValue& value);
    void Delete(RegistryKeyId key);
    /// @p to must not be within @p from.
    void Copy(RegistryKeyId from, RegistryKeyId to);

    /// Whether @p key is @p above or within it.
    bool IsWithin(RegistryKeyId key, RegistryKeyId above);

private:
    std::optional<RegistryKeyId> FindPart(RegistryKeyId from, const RegistryPath& path, std::size_t first,
                                          std::size_t count);
    std::optional<RegistryKeyId> Follow(RegistryKeyId from, const RegistryPath& path, std::size_t& first,
                                        std::size_t rest);
    std::optional<RegistryKeyId> FindChild(RegistryKeyId parent, std::string_view fold);
    RegistryKeyId MakeChild(RegistryKeyId parent, std::string_view fold, std::string_view name,
                            std::string_view className);

    Database m_database;
    std::vector<Statement> m_find;  // by the number of names that are looked up at once
    std::vector<Statement> m_read;
    Statement m_parent, m_children, m_values, m_copyValues, m_makeChild, m_write, m_delete;
};

}  // namespace qel
