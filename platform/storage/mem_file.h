#pragma once

#include <span>
#include <vector>

#include "qellib10/platform/storage/file.h"

/// A file in memory: it grows when written, or reads a block that belongs to the caller. Seek, Read, Write and the
/// lengths behave as on disk. It has no name, no handle, no locks and no duplicates (fileNotFound, code 6).
class QELLIB10_API CMemFile : public CFile {
public:
    CMemFile() noexcept;
    ~CMemFile() override;

    /// From now on reads @p size bytes at @p buffer, without a copy: they must outlive the file. Writing is refused
    /// with accessDenied, code 5. The position is 0.
    void Attach(const BYTE* buffer, UINT size);

    /// All bytes, valid until the next change.
    std::span<const BYTE> Bytes() const noexcept { return m_bytes; }
    /// Returns the bytes and leaves an empty file.
    std::vector<BYTE> Detach();

    ULONGLONG GetPosition() const override;
    /// A memory file cannot be opened by name: returns 0, invalidFile.
    BOOL Open(const char* name, UINT flags, CFileException* error = nullptr) override;
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    /// More than memory can hold: genericException, code 8, and nothing changes.
    void SetLength(ULONGLONG length) override;
    ULONGLONG GetLength() const override;
    UINT Read(void* buffer, UINT count) override;
    void Write(const void* buffer, UINT count) override;
    void Abort() noexcept override;
    void Flush() override;
    /// Frees the bytes; the file is then empty and can be written again.
    void Close() override;

private:
    void Extend(ULONGLONG length);

    std::vector<BYTE> m_own;
    std::span<const BYTE> m_bytes;  // of m_own, or the caller's bytes
    ULONGLONG m_nPosition = 0;
    bool m_bAttached = false;
};
