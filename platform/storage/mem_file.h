#pragma once

#include <span>
#include <vector>

#include "qellib10/platform/storage/file.h"

/// A file in memory: it grows as it is written, or reads a block of the caller's. Seek, Read, Write and the lengths
/// behave as on disk; it has no name, no handle, no locks and no duplicates (fileNotFound, code 6).
class QELLIB10_API CMemFile : public CFile {
public:
    CMemFile() noexcept;
    ~CMemFile() override;

    /// Reads @p size bytes at @p buffer from now on, in place: they must outlive the file. Writing is refused with
    /// accessDenied, code 5. The position is 0.
    void Attach(const BYTE* buffer, UINT size);

    /// All bytes, valid until the next change.
    std::span<const BYTE> Bytes() const noexcept { return m_bytes; }
    /// Hands the bytes out and leaves an empty file.
    std::vector<BYTE> Detach();

    ULONGLONG GetPosition() const override;
    /// There is nothing to open by name: 0, invalidFile.
    BOOL Open(const char* name, UINT flags, CFileException* error = nullptr) override;
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    /// More than memory can hold: genericException, code 8, and nothing is changed.
    void SetLength(ULONGLONG length) override;
    ULONGLONG GetLength() const override;
    UINT Read(void* buffer, UINT count) override;
    void Write(const void* buffer, UINT count) override;
    void Abort() noexcept override;
    void Flush() override;
    /// Frees the bytes; the file is empty afterwards and may be written again.
    void Close() override;

private:
    void Extend(ULONGLONG length);

    std::vector<BYTE> m_own;
    std::span<const BYTE> m_bytes;  // of m_own, or the caller's
    ULONGLONG m_nPosition = 0;
    bool m_bAttached = false;
};
