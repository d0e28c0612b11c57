#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A lock for one thing that is done with a file, in whatever program: only one program can hold it. It is a file next
/// to that one, for those who may write that one, held by a lock that goes with its process and removed at the end.
/// What a killed program leaves of it is used and removed by the next.
///
/// Waiting has no order: whoever asks first after it is free has it next.
class QELLIB10_INTERNAL_API NameLock {
public:
    /// Waits no longer than @p patience.
    /// @param posixPath of the file that it is about; links to one file lead to one lock
    /// @param suffix what follows the file's name in that of the lock
    /// @throws CFileException when the file is missing, or the lock's cannot be made
    NameLock(const std::string& posixPath, std::string_view suffix, std::chrono::nanoseconds patience);
    ~NameLock();
    NameLock(const NameLock&) = delete;
    NameLock& operator=(const NameLock&) = delete;

    /// False when others have had it for all the time.
    bool IsTaken() const noexcept { return m_isTaken; }

private:
    bool Take();

    std::string m_about, m_path;
    Descriptor m_file;
    bool m_isTaken = false;
};

}  // namespace qel
