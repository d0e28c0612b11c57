#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A regular file that somebody might exchange for another one, a link or a device while it is used: opening follows no
/// link as the last part of the path and never waits for a pipe, and the name is compared with what was opened.
/// Everything throws CFileException.
class QELLIB10_INTERNAL_API GuardedFile {
public:
    /// kMake: for writing, and made with mode 0644 if it is missing, kMakePrivate: with 0600; kMakeNew: it must be
    /// missing.
    enum class Use { kRead, kWrite, kMake, kMakePrivate, kMakeNew };

    /// @param path in the library's form
    /// @throws CFileException 5 for what is no regular file
    GuardedFile(const std::string& path, Use use);
    /// The same; nothing if the file is missing.
    static std::optional<GuardedFile> OpenIfThere(const std::string& path, Use use);

    std::uint64_t Size() const;
    /// Whether only its owner, who is this process's user, may read and write it.
    bool IsPrivate() const;
    /// False when the name leads to another file by now, or to none.
    bool IsInPlace() const;
    /// @return the size
    /// @throws CFileException 1006 when the name leads to another file by now, or to none
    std::uint64_t RequireInPlace() const;

    /// @return bytes read, fewer than asked only at the end of the file
    std::size_t ReadAt(std::span<std::byte> bytes, std::uint64_t offset) const;
    void WriteAt(std::span<const std::byte> bytes, std::uint64_t offset) const;
    void Truncate(std::uint64_t size) const;
    void Flush() const;
    void FlushFolder() const;

    /// Keeps out whoever locks the same file through an object of its own, in this process or another one. The lock
    /// goes with the process and the children that it has forked. Forked children share the parent's: they have to open
    /// the file themselves.
    class QELLIB10_INTERNAL_API Lock {
    public:
        /// @throws CFileException 33 when @p patience ends before the lock is free, or in a forked child
        Lock(const GuardedFile& file, std::chrono::milliseconds patience);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        const GuardedFile& m_file;
    };

private:
    GuardedFile(std::string path, std::string posixPath, Descriptor file);

    void Identify();

    std::string m_path, m_posixPath;
    Descriptor m_file;
    int m_process;
    std::uint64_t m_device = 0, m_inode = 0;  // of the file that was opened
};

}  // namespace qel
