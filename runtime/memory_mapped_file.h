#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

class CAutoLockedMemoryMappedFile;

namespace qel {

/// Whether the holder before this one died with its view mapped, so that the block may be half written. It is known
/// when GetDataPtr has returned, and holds until its next call. Exactly one of those who come after the dead one gets
/// true; it writes the block again from the start, or informs the others.
QELLIB10_API bool WasAbandoned(const CAutoLockedMemoryMappedFile& block) noexcept;

}  // namespace qel

/// A block of memory that processes of one user share under a name: a measuring program writes readings, and others
/// show them without a file between. It lives as long as any process has it open; a killed process leaves nothing
/// behind. It has no lock: two programs that change it at the same time need CAutoLockedMemoryMappedFile, or a reader
/// sees half a reading.
///
/// @code
/// CMemoryMappedFile block;
/// if (!block.Open(6, "readings", sizeof(double))) return;  // block.GetLastError() says why
/// const auto* const reading = static_cast<const double*>(block.GetDataPtr(4, 0));
/// if (reading == nullptr) return;
/// const double shown = *reading;  // 0 in a new block
/// @endcode
///
/// A name has up to 260 bytes and no backslash except after "Global" or "Local"; upper and lower case differ. A new
/// block is zero, an existing one keeps its size and bytes. A forked child has none of its parent's blocks open, but
/// their views stay mapped in it.
///
/// Copies share the handle and the view, which are not duplicated: the first of them to close or unmap does it for all,
/// and for the others these operations fail without harm. qel::LastFailure, too, has the reason of each 0 and null.
/// Nothing is thrown; copying may throw std::bad_alloc. One thread at a time.
class QELLIB10_API CMemoryMappedFile {
public:
    CMemoryMappedFile() = default;
    CMemoryMappedFile(const CMemoryMappedFile&) = default;
    CMemoryMappedFile& operator=(const CMemoryMappedFile&) = default;
    /// Unmaps the view and closes.
    virtual ~CMemoryMappedFile();

    /// Opens the block of that name, whatever its size, or creates one of @p size bytes. An object that is already open
    /// keeps its block and changes only its name and access.
    /// @param access kept; what may be done with a view is an argument of GetDataPtr
    /// @return 0 with the reason as the last error: no size for a new block (87), no memory (8), a name that is too
    /// long (206), has a backslash (3), or belongs to a mutex (6)
    virtual int Open(DWORD access, const char* name, DWORD size);

    /// Closes the block; a mapped view stays mapped.
    virtual void Close();

    /// Unmaps the current view and maps the first @p size bytes, 0 for all.
    /// @param access with 2 in it the view may be written
    /// @return null if not open; also null, with the reason as the last error, for more bytes than the block has (5),
    /// without memory (8), and for a block whose file in /dev/shm another program has cut (1006). Cutting it under a
    /// view is fatal
    virtual void* GetDataPtr(DWORD access, DWORD size);

    virtual void GetDataPtrUnmap();

    /// Kept for programs that call it: the system writes to files, not to blocks of memory. Write data through the
    /// view.
    /// @return 0; for an open object with last error 6 and 0 in @p written
    virtual int SetData(void* data, DWORD size, DWORD* written);

    /// The number of the last failure: 0 after a successful Open, undefined after any other success.
    DWORD GetLastError() const { return m_nLastError; }
    const CString& GetName() const { return m_szName; }
    DWORD GetAccess() const { return m_nAccess; }

protected:
    void SetLastError(DWORD code) { m_nLastError = code; }
    bool IsOpen() const { return m_hMapping != nullptr; }

private:
    HANDLE m_hMapping = nullptr;
    DWORD m_nLastError = 0;
    void* m_pView = nullptr;
    CString m_szName;
    DWORD m_nAccess = 0;
};

/// A CMemoryMappedFile that one process has to itself while it has mapped a view: every other process that maps it
/// through this class waits until then. So nobody reads a block that is half written, and nobody can forget the lock.
///
/// @code
/// CAutoLockedMemoryMappedFile block;
/// if (!block.Open(6, "readings", sizeof(double))) return;
/// auto* const reading = static_cast<double*>(block.GetDataPtr(2, 0));  // waits
/// if (reading == nullptr) return;
/// *reading = 16.519;
/// block.GetDataPtrUnmap();  // the next one has its turn
/// @endcode
///
/// The lock is the named mutex "MM::" and the block's name, so 256 bytes are left for the name. A process or thread
/// that ends with a view gives up its lock, and may have left the block half written: the next holder asks
/// qel::WasAbandoned. The thread that has mapped a view is the one that unmaps it.
class QELLIB10_API CAutoLockedMemoryMappedFile : public CMemoryMappedFile {
public:
    CAutoLockedMemoryMappedFile() = default;
    CAutoLockedMemoryMappedFile(const CAutoLockedMemoryMappedFile&) = default;
    CAutoLockedMemoryMappedFile& operator=(const CAutoLockedMemoryMappedFile&) = default;
    ~CAutoLockedMemoryMappedFile() override;

    /// Releases a lock that it holds, waits for the lock without limit and maps. If null is returned, no lock is held.
    /// Only for a name that can never be a mutex's does it not wait (last error 3 or 206), and without memory for the
    /// name (8).
    void* GetDataPtr(DWORD access, DWORD size) override;

    /// Unmaps the view and releases the lock.
    void GetDataPtrUnmap() override;

private:
    friend QELLIB10_API bool qel::WasAbandoned(const CAutoLockedMemoryMappedFile& block) noexcept;

    bool TakeLock();

    HANDLE m_hMutex = nullptr;  // the lock, while it is held
    bool m_wasAbandoned = false;
};
