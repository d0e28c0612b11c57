#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A file that is replaced as a whole. What is written stands beside it, as `<name>.<4 hex digits>.tmp`, and becomes
/// the file in one step. Readers see the old bytes or the new ones; without Commit nothing happened.
///
///     qel::Replacement settings(path);
///     qel::WriteFully(settings.File(), bytes, path);
///     settings.Commit();
///
/// Of a symbolic link the file is replaced that it leads to.
class QELLIB10_API Replacement {
public:
    /// @throws CFileException when the new file cannot be made
    explicit Replacement(std::string_view path);
    /// Removes what was written, unless committed.
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// The new file, open for reading and writing.
    const Descriptor& File() const noexcept { return m_file; }

    /// Flushes the new file, gives it the old one's access rights, renames it, flushes the folder.
    /// @throws CFileException 5 when the old file is read-only or a folder, 32 when it is open anywhere; it stays
    void Commit();

    /// The same for a file that must not exist yet.
    /// @throws CFileException 80 when it does
    void CommitNew();

private:
    void TakeRightsOfOld();
    void Done();

    std::string m_name;  // as the caller knows it
    std::string m_target;
    std::string m_temporary;  // empty once committed
    Descriptor m_file;
};

}  // namespace qel
