#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

struct stat;

namespace qel {

class FileAttributes;
class UnfinishedFile;

/// A file that is replaced as a whole. What is written is beside it, as `<name>.<4 hex digits>.tmp`, and becomes the
/// file in one step. Readers see the old bytes or the new ones; without Commit nothing happened. What killed writers
/// have left goes when the next one of their file starts (see UnfinishedFile); nobody else may use such names.
///
///     qel::Replacement settings(path);
///     qel::WriteFully(settings.File(), bytes, path);
///     settings.Commit();
///
/// Of a symbolic link the file is replaced, or made, that it leads to, by the kernel's rule for links in folders like
/// the one for temporary files: there only one of the caller's own or of the folder's owner is followed. Before its
/// first byte is written the new file has the owner, the rights and the access control list of the old one, as far as
/// the caller may set them. What cannot be kept is never made up for by more rights: nobody but the caller may do more
/// with the new bytes than with the old ones. With the name it gets the old one's extended attributes. New bytes do not
/// get what lets a program act for somebody else: set-user-id, set-group-id and capabilities.
class QELLIB10_API Replacement {
public:
    /// @param newMode where there is no old file: the mode of the new one, less the umask
    /// @throws CFileException when the new file cannot be made, or would get more rights than the old one has
    explicit Replacement(std::string_view path, unsigned newMode = 0666);
    /// A new file that gets owner, rights and attributes of the file at @p posixPattern instead, if there is one.
    Replacement(std::string_view path, const std::string& posixPattern);
    /// For a file that is moved: it gets owner, rights and attributes of the open file @p moved, with whose bytes the
    /// caller fills it. @p moved must stay open.
    Replacement(std::string_view path, const Descriptor& moved);
    /// Removes what was written, unless committed.
    ~Replacement();
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// The new file, open for reading and writing.
    const Descriptor& File() const noexcept;

    /// Flushes the new file, renames it, flushes the folder.
    /// @throws CFileException 5 when the old file is read-only or a folder, 32 when it is open anywhere; it stays
    void Commit();

    /// The same for a file that must not exist yet.
    /// @throws CFileException 80 when it does
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
    std::string m_pattern;  // whose rights it gets, unless a file is moved
    int m_moved = -1;       // that file
    unsigned m_newMode = 0666;
    std::unique_ptr<struct stat> m_given;  // that file as it was when they were given
    std::unique_ptr<UnfinishedFile> m_made;
};

/// Whether the caller may put another file in the place of the one at @p path: where not, it can only be written in
/// place. @throws CFileException when that cannot be found out
bool CanReplace(std::string_view path);

}  // namespace qel
