#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// The value of an extended attribute of the file at @p posixPath; none where there is none, or none may be read.
/// @p name is what exceptions call the file.
/// @throws CFileException when the system fails
std::optional<std::vector<std::byte>> AttributeOf(const std::string& posixPath, const char* attribute,
                                                  std::string_view name);

/// The access control list of a file: who may do what beside owner, group and others. Most files have none.
///
///     offset 0    version, 4 bytes       2; integers little-endian
///     offset 4    entries, 8 bytes each  tag (2 bytes), rights (2, as the lowest 3 bits of a mode), user or group (4)
class AccessList {
public:
    static constexpr const char* kName = "system.posix_acl_access";  // the extended attribute that it is kept in

    /// That of the file at @p posixPath. @throws CFileException
    AccessList(const std::string& posixPath, std::string_view name);

    bool IsEmpty() const noexcept { return m_bytes.empty(); }
    /// What the file's group may do, as bits of a mode; those of the mode itself are then the list's mask.
    unsigned GroupBits() const;
    /// Lets the group do no more than others, for a file that is of another group than this list was made for.
    void LimitGroup();
    /// Gives the list to a file, in place of one that its folder has given it. @return 0 or the errno
    int GiveTo(int file) const;

private:
    std::vector<std::byte> m_bytes;  // none without a list, and for one that is not understood
};

}  // namespace qel
