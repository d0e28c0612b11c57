#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/storage/file_attributes.h"

namespace qel {

/// The access control list of a file: the rights of users besides owner, group and others. Most files have none.
///
///     offset 0    version, 4 bytes       2; integers little-endian
///     offset 4    entries, 8 bytes each  tag (2 bytes), rights (2, as the lowest 3 bits of a mode), user or group (4)
class AccessList {
public:
    static constexpr const char* kName = "system.posix_acl_access";  // the extended attribute that holds it

    /// @throws CFileException
    explicit AccessList(const FileAttributes& file);

    bool IsEmpty() const noexcept { return m_bytes.empty(); }
    /// What a file with this list and @p mode allows its group and others, as mode bits. With a list, the group bits of
    /// the mode are the upper limit for everybody except the owner and others.
    unsigned GroupAndOthers(unsigned mode) const;
    /// The same, but neither gets more than every user and every group named in the list may do.
    unsigned WithoutNames(unsigned mode) const;
    /// Limits group and others to what both may do, for a file whose group is not the one this list was made for:
    /// members of the former group are then others. @return @p mode with these bits
    unsigned LimitGroupAndOthers(unsigned mode);
    /// Sets the list on a file, replacing one that its folder has given it. @return 0 or the errno
    int GiveTo(int file) const;

private:
    std::vector<std::byte> m_bytes;  // empty without a list, and for a list that we do not understand
};

}  // namespace qel
