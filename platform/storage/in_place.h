#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A file that is written in place because it cannot be replaced (see CanReplace). Without Commit it gets its former
/// bytes back, so a full disk loses nothing; only a killed process or a power failure can leave a partly written file.
///
///     qel::InPlace settings(path);
///     qel::WriteFullyAt(settings.File(), bytes, 0, path);
///     settings.Commit(bytes.size());
class InPlace {
public:
    /// Opens the file exclusively. Its bytes are first copied to a file without a name in the folder for temporary
    /// files.
    /// @throws CFileException, also when they do not fit there; 32 when the file is open anywhere
    explicit InPlace(std::string_view path);
    ~InPlace();
    InPlace(const InPlace&) = delete;
    InPlace& operator=(const InPlace&) = delete;

    /// Open for writing from its start. Only Commit shortens it: until then a reader finds the old text, the new one,
    /// or the start of the new one followed by the rest of the old, and the old bytes keep their space on disk.
    const Descriptor& File() const noexcept { return m_file; }

    /// The file now ends after @p length bytes, which are on disk. @throws CFileException
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
