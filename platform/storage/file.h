#pragma once

#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/file_status.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// A file on disk, opened by name and flags. Several programs use the files of an instrument at the same time. Without
/// share modes one of them reads a file that another one is still writing, or overwrites one that is being read. Here
/// each opening says what others may do meanwhile, and this ends with the process, however it ends.
///
/// @code
/// CFile file;
/// CFileException error;
/// if (!file.Open("curve.dat", CFile::modeRead | CFile::shareDenyWrite, &error)) return;  // m_lOsError 32: in use
/// char head[36];
/// if (file.Read(head, sizeof head) < sizeof head) return;  // the file ends earlier
/// @endcode
///
/// Positions have 64 bits. Names use the backslash; a forward slash works too. Operations throw CFileException unless
/// they say otherwise; on a closed file fileNotFound, code 6. One thread at a time.
///
/// The share mode holds between all openings of a file by programs that use this library, within one process and across
/// processes. An opening is refused (sharingViolation, code 32) if it does what another one denies, or denies what
/// another one does. Without share bits nobody else may have the file open. A file that is open anywhere is neither
/// deleted, renamed nor replaced.
///
/// GetStatus, Remove and Rename are in file_status.cpp, everything else in file.cpp.
class QELLIB10_API CFile {
public:
    enum OpenFlags : UINT {
        modeRead = 0x00000,
        modeWrite = 0x00001,
        modeReadWrite = 0x00002,
        shareCompat = 0x00000,  ///< as shareExclusive
        shareExclusive = 0x00010,
        shareDenyWrite = 0x00020,
        shareDenyRead = 0x00030,
        shareDenyNone = 0x00040,
        modeNoInherit = 0x00080,    ///< always set
        modeCreate = 0x01000,       ///< create the file, or empty an existing one
        modeNoTruncate = 0x02000,   ///< with modeCreate: keep the content
        typeText = 0x04000,         ///< no effect
        typeBinary = 0x08000,       ///< no effect
        osNoBuffer = 0x10000,       ///< no effect
        osWriteThrough = 0x20000,   ///< a write returns when the bytes are on disk
        osRandomAccess = 0x40000,   ///< no effect
        osSequentialScan = 0x80000  ///< no effect
    };
    static constexpr UINT kAccessMask = 0x3;
    static constexpr UINT kShareMask = 0x70;

    enum SeekPosition : UINT { begin = 0, current = 1, end = 2 };

    /// The handle of a closed file: all bits set. (An open file's handle is neither this nor 0.)
    static const HANDLE hFileNull;

    CFile() noexcept;
    /// Opens @p name like Open, and throws if that fails.
    CFile(const char* name, UINT flags);
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    virtual ULONGLONG GetPosition() const;
    /// The last component of the path; the title has no extension. The path is absolute, as it was at Open. All are
    /// empty for a closed file.
    virtual CString GetFileName() const;
    virtual CString GetFileTitle() const;
    virtual CString GetFilePath() const;

    /// Opens a regular file. Anything else is accessDenied, code 5, and so is writing to a file with the read-only
    /// attribute. An object that is already open is closed first. The position is 0.
    /// @param flags one of modeRead/modeWrite/modeReadWrite, one of the share modes, and others as needed
    /// @param error receives the cause of a failure
    /// @return 0 on failure; nothing is thrown
    virtual BOOL Open(const char* name, UINT flags, CFileException* error = nullptr);

    /// A second object for the same opening: both share the position, and the share mode lasts until the last one is
    /// closed.
    virtual std::unique_ptr<CFile> Duplicate() const;

    /// Returns the new position from the start. It may be past the end; the file grows only when data is written there.
    /// A position before the start: badSeek, code 131.
    virtual ULONGLONG Seek(LONGLONG offset, UINT from);
    /// Shortens the file, or extends it with zeros; the position is @p length afterwards.
    virtual void SetLength(ULONGLONG length);
    virtual ULONGLONG GetLength() const;

    /// @return bytes read: fewer than @p count only at the end of the file, 0 when the position is at or past the end
    virtual UINT Read(void* buffer, UINT count);
    /// Writes all @p count bytes or throws. A gap between the end of the file and the position is filled with zeros.
    /// Reading or writing 0 bytes succeeds for any file.
    virtual void Write(const void* buffer, UINT count);

    /// Keeps other openings from locking these bytes (not from reading or writing them) until they are unlocked or the
    /// file is closed. Already locked by another opening: lockViolation, code 33, unless both are open for reading
    /// only. A range that ends past 0x7FFFFFFFFFF00000, where the marks of share modes are: badSeek.
    virtual void LockRange(ULONGLONG position, ULONGLONG count);
    virtual void UnlockRange(ULONGLONG position, ULONGLONG count);

    /// Closes without reporting errors.
    virtual void Abort() noexcept;
    /// Returns when all written bytes are on disk. Does nothing for a closed file. A file opened for reading:
    /// accessDenied.
    virtual void Flush();
    /// Does nothing for a closed file. If the system reports lost bytes, the file is closed first, then it throws.
    virtual void Close();

    /// Closes without reporting errors.
    virtual ~CFile();

    /// Deletes a file. Missing: 2, or 3 if its folder is missing; a folder or a read-only file: 5; open anywhere: 32.
    static void Remove(const char* name);
    /// Renames or moves a file or folder; a file also to another volume. If the new name exists: accessDenied, code
    /// 183.
    static void Rename(const char* oldName, const char* newName);
    /// Describes a file or folder without opening it.
    /// @return 0 if it is missing, or is a link to something missing; nothing is thrown and @p status does not change
    static BOOL GetStatus(const char* name, CFileStatus& status);
    /// The same for the open file; 0 for a closed one.
    BOOL GetStatus(CFileStatus& status) const;

    /// @return the new position, which is the length
    ULONGLONG SeekToEnd() { return Seek(0, end); }
    void SeekToBegin() { Seek(0, begin); }

    /// Opaque: descriptor + 1, or hFileNull. Use it only to test whether the file is open.
    operator HANDLE() const noexcept;

    /// The descriptor, for operations on two files at once. The file still owns it.
    /// @throws CFileException like reading or writing, if the file was not opened for that
    const qel::Descriptor& ReadableDescriptor() const;
    const qel::Descriptor& WritableDescriptor() const;

private:
    enum class Need { any, reading, writing };

    void OpenOrThrow(const char* name, UINT flags);
    int CloseDescriptor() noexcept;                   // 0 or the errno; the file is closed in both cases
    const qel::Descriptor& Checked(Need need) const;  // throws when the file is closed or not opened for that
    void SetRangeLock(short type, ULONGLONG position, ULONGLONG count);

    qel::Descriptor m_descriptor;
    mutable bool m_bDuplicated = false;  // the opening has, or had, another object
    UINT m_nFlags = 0;
    CString m_strFilePath;
};
