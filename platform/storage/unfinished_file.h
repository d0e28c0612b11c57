#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A file that is written next to the file that it will become, as `<name>.<4 hex digits>.tmp`, so that readers never
/// find a part of it. Its writer holds a lock on it that the kernel removes with the process. So leftovers of killed
/// processes are recognized, and the next writer to the same name removes them: all of them, unless more than eight
/// processes wrote at once, because the search stops after eight free numbers. On a file system without locks leftovers
/// are not recognized and stay. So does the second name of a read-only file that got its final name by a link and was
/// left with both.
class QELLIB10_INTERNAL_API UnfinishedFile {
public:
    /// Creates a new, empty file, open for reading and writing.
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

    /// Whether it is still the file at Path(): on a file system without locks others may take it for a leftover.
    bool HasItsName() const;

    /// It now has its final name.
    void Finish() noexcept { m_path.clear(); }

private:
    UnfinishedFile() = default;
    bool Make(unsigned mode, std::string_view name);
    void TakeWriteRights(unsigned mode, std::string_view name) const;

    std::string m_path;
    Descriptor m_file;
};

}  // namespace qel
