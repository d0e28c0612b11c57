#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/storage/file_attributes.h"

namespace qel {

/// The access control list of a file: who may do what beside owner, group and others. Most files have none.
///
///     offset 0    version, 4 bytes       2; integers little-endian
///     offset 4    entries, 8 bytes each  tag (2 bytes), rights (2, as the lowest 3 bits of a mode), user or group (4)
class AccessList {
public:
    static constexpr const char* kName = "system.posix_acl_access";  // the extended attribute that it is kept in

    /// @throws CFileException
    explicit AccessList(const FileAttributes& file);

    bool IsEmpty() const noexcept { return m_bytes.empty(); }
    /// What a file of this list and @p mode lets its group and others do, as bits of a mode: with a list the group's
    /// bits of the mode are the most that anybody but the owner and others may do.
    unsigned GroupAndOthers(unsigned mode) const;
    /// The same with no more for either than each user and each group that the list names may do.
    unsigned WithoutNames(unsigned mode) const;
    /// Lets the group and others do no more than both may, for a file that is of another group than this list was made
    /// for: those of the former group are others then. @return @p mode with these bits
    unsigned LimitGroupAndOthers(unsigned mode);
    /// Gives the list to a file, in place of one that its folder has given it. @return 0 or the errno
    int GiveTo(int file) const;

private:
    std::vector<std::byte> m_bytes;  // none without a list, and for one that is not understood
};

}  // namespace qel
