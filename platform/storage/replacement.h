#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/text/string.h"

struct stat;

namespace qel {

class FileAttributes;
class UnfinishedFile;

/// Replaces a file as a whole. The new bytes are written to a file next to it, `<name>.<4 hex digits>.tmp`, which takes
/// its place in one step. Readers see the old bytes or the new ones; without Commit nothing happens. What killed
/// writers have left is removed when the next writer of the same file starts (see UnfinishedFile); nobody else may use
/// such names.
///
///     qel::Replacement settings(path);
///     qel::WriteFully(settings.File(), bytes, path);
///     settings.Commit();
///
/// For a symbolic link, the file that it leads to is replaced or created. The kernel's rule for links in shared folders
/// such as the one for temporary files applies: only links of the caller or of the folder's owner are followed. Before
/// the first byte is written, the new file gets the owner, the rights and the access control list of the old one, as
/// far as the caller may set them. If something cannot be kept, the rights only get narrower: nobody but the caller can
/// do more with the new bytes than with the old ones. At the rename it gets the old file's extended attributes. New
/// bytes never get the right to act for somebody else: set-user-id, set-group-id and capabilities.
class QELLIB10_API Replacement {
public:
    /// @param newMode if there is no old file: the mode of the new one, less the umask
    /// @throws CFileException when the new file cannot be created, or would get more rights than the old one has
    explicit Replacement(std::string_view path, unsigned newMode = 0666);
    /// A new file that instead gets the owner, rights and attributes of the file at @p posixPattern, if that exists.
    Replacement(std::string_view path, const std::string& posixPattern);
    /// For a file that is moved: it gets the owner, rights and attributes of the open file @p moved, whose bytes the
    /// caller copies into it. @p moved must stay open.
    Replacement(std::string_view path, const Descriptor& moved);
    /// Removes the new file unless it was committed.
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// The new file, open for reading and writing.
    const Descriptor& File() const noexcept;

    /// The new file's path in the library's form, for operations that open files by their names. Where a
    /// link has led through "..", its folder is without links, since the library takes ".." out of paths first.
    /// @throws CFileException above the library's 259 bytes, and if the folder cannot be found out
    CString Path() const;

    /// Flushes the new file, renames it, flushes the folder.
    /// @throws CFileException 5 when the old file is read-only or a folder, 32 when it is open anywhere; the old file
    /// stays then
    void Commit();

    /// The same for a file that must not exist yet.
    /// @throws CFileException 80 if it exists
    void CommitNew();

private:
    void Make();
    bool FindPattern(struct stat& pattern) const;
    FileAttributes Attributes() const;
    void GiveAccess(const struct stat& pattern);
    void GiveRights();
    void Done();

    std::string m_name;  // as the caller knows it
    std::string m_target;
    std::string m_pattern;  // the file whose rights it gets, unless a file is moved
    int m_moved = -1;       // that file
    unsigned m_newMode = 0666;
    std::unique_ptr<struct stat> m_given;  // that file's status when the rights were copied
    std::unique_ptr<UnfinishedFile> m_made;
};

/// Whether the caller may replace the file at @p path. If not, it can only be written in place. @throws CFileException
/// when that cannot be determined
bool CanReplace(std::string_view path);

}  // namespace qel
