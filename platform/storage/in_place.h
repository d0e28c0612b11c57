#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A file that is written in place, since it cannot be replaced (see CanReplace). It gets its former bytes back unless
/// committed, so a full disk loses nothing; only a killed process or a power cut may leave a part.
///
///     qel::InPlace settings(path);
///     qel::WriteFullyAt(settings.File(), bytes, 0, path);
///     settings.Commit(bytes.size());
class InPlace {
public:
    /// Opens the file for itself alone. Its bytes are copied to a file without a name in the folder for temporary
    /// files.
    /// @throws CFileException, also when they do not fit there; 32 when the file is open anywhere
    explicit InPlace(std::string_view path);
    ~InPlace();
    InPlace(const InPlace&) = delete;
    InPlace& operator=(const InPlace&) = delete;

    /// Open for writing from its start. It is cut only by Commit: until then a reader finds the former text or the new
    /// one, or the start of one before the end of the other, and the former bytes have their place on the disk.
    const Descriptor& File() const noexcept { return m_file; }

    /// The file ends after @p length bytes, which are on the disk. @throws CFileException
    void Commit(std::uint64_t length);

private:
    void End(std::uint64_t length) const;

    std::string m_name;
    Descriptor m_file;
    Descriptor m_former;
    std::uint64_t m_formerLength = 0;
    bool m_isDone = false;
};

}  // namespace qel
