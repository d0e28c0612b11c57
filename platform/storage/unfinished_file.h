#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A file that is written beside the one that it is to become, as `<name>.<4 hex digits>.tmp`, so that readers never
/// find a part of it. Its writer holds a lock on it that the kernel drops with the process. So what killed ones have
/// left is known, and the next that writes to a file of that name removes it: all of it, unless more than eight wrote
/// to the file at once, since no more than eight numbers that are free are passed over to look for more. On a disk that
/// knows no locks nothing is known, and leftovers stay.
class UnfinishedFile {
public:
    /// A new, empty file, open for reading and writing.
    /// @param target a POSIX path, @p name what exceptions call it
    /// @param mode as for open()
    /// @throws CFileException
    UnfinishedFile(const std::string& target, unsigned mode, std::string_view name);
    /// Removes it, unless finished.
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const Descriptor& File() const noexcept { return m_file; }
    const std::string& Path() const noexcept { return m_path; }  // empty once it is finished

    /// Whether it is still the file at Path(): on a disk that knows no locks others may take it for a leftover.
    bool HasItsName() const;

    /// It has the name that it is for.
    void Finish() noexcept { m_path.clear(); }

private:
    bool Make(unsigned mode, std::string_view name);

    std::string m_path;
    Descriptor m_file;
};

}  // namespace qel
