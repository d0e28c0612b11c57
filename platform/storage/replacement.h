#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

struct stat;

namespace qel {

class UnfinishedFile;

/// A file that is replaced as a whole. What is written is beside it, as `<name>.<4 hex digits>.tmp`, and becomes the
/// file in one step. Readers see the old bytes or the new ones; without Commit nothing happened. What a killed writer
/// has left goes when the next one of its file begins; nobody else may use such names.
///
///     qel::Replacement settings(path);
///     qel::WriteFully(settings.File(), bytes, path);
///     settings.Commit();
///
/// Of a symbolic link the file is replaced, or made, that it leads to. Before its first byte is written the new file
/// has the owner, the mode and the access control list of the old one, as far as the caller may set them, and so nobody
/// may ever do more with the new bytes than with the old ones. With the name it gets the old one's extended attributes.
class QELLIB10_API Replacement {
public:
    /// @param newMode where there is no old file: the mode of the new one, less the umask
    /// @throws CFileException when the new file cannot be made, or would get more rights than the old one has
    explicit Replacement(std::string_view path, unsigned newMode = 0666);
    /// A new file that gets owner, rights and attributes of the file at @p posixPattern instead, for one that is moved.
    Replacement(std::string_view path, const std::string& posixPattern);
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
    void Make(unsigned newMode);
    void GiveRights(const struct stat& pattern);
    void Done();

    std::string m_name;  // as the caller knows it
    std::string m_target;
    std::string m_pattern;                 // whose rights it gets
    std::unique_ptr<struct stat> m_given;  // that file as it was when they were given
    std::unique_ptr<UnfinishedFile> m_made;
};

/// Whether the caller may put another file in the place of the one at @p path: where not, it can only be written in
/// place. @throws CFileException
bool CanReplace(std::string_view path);

}  // namespace qel
