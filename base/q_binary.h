#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

class CArchive;

/// A growable buffer of bytes in which telegrams and binary records are built field by field and taken apart by
/// position. It prevents two mistakes of arrays: reading or writing outside of a telegram that came too short, and
/// numbers in the wrong byte order.
///
/// @code
/// CQBinary request;
/// request.AddByte(0x02);
/// request.AddString("DOSE");
/// CQBinary answer("\x01\xA9\x03", 3);
/// answer.SetEndian(1);                       // highest byte first
/// if (answer.GetSize() < 3) return;          // positions outside read as 0
/// const short model = answer.GetShort(0);    // 425
/// @endcode
///
/// Positions and sizes count bytes from 0. A null pointer, a negative position or count, and an end that an int cannot
/// count are refused: the result is 0 and nothing is changed. If there is no memory the result is 0 as well, or nothing
/// is appended. Data may point into the buffer itself. Serialize throws what the archive throws; GetString and the text
/// fields throw std::bad_alloc.
///
/// The capacity is what callers may count on: 1024 bytes at first, taken at the first use and zero until written. The
/// first block, SetSize and SetBinary without a position take exactly the size if the capacity is too small. Otherwise
/// it grows to the next multiple of 1024 above the size (1024 becomes 2048 for 1025 bytes, 3072 for 2048). It does not
/// shrink, not even when the memory is freed, except in DeleteTop and by assignment, which takes that of the source.
///
/// Kept for telegrams in the field: SetBinary at a position ends the buffer after the bytes that it writes; the text
/// fields write the minus sign of a negative number twice; see also AddBinary and DeleteTop.
class QELLIB10_API CQBinary {
public:
    CQBinary() noexcept = default;
    CQBinary(const void* data, int size) { SetBinary(data, size); }
    CQBinary(const CQBinary& other) : m_nCapacity(kSmallestCapacity) { *this = other; }
    virtual ~CQBinary();

    /// Copies bytes, capacity and byte order of @p other.
    CQBinary& operator=(const CQBinary& other);

    /// Size, bytes, byte order: an int, the bytes, an int, lowest byte first.
    ///
    /// Loading treats a negative size as 0 and reads no bytes for it. If memory runs out, the buffer is empty and the
    /// bytes in the archive are not read.
    /// @throws CArchiveException endOfFile if the archive ends too early: within the size the contents stay, within the
    /// bytes the buffer is empty, within the byte order it has the new bytes and keeps its byte order
    virtual void Serialize(CArchive& ar);

    /// Empty, and lowest byte first again.
    void Initialize() noexcept;

    // --- The buffer as a whole ---

    /// Replaces the contents by the @p n bytes at @p data.
    /// @return n; 0 changes nothing, except that the buffer is empty if memory runs out
    int SetBinary(const void* data, int n);

    /// Writes @p n bytes at @p pos. The buffer then ends after them, on purpose, even if they are in its middle. A gap
    /// before @p pos contains what the buffer held there before, at first zeros.
    /// @return n or 0
    int SetBinary(int pos, const void* data, int n);

    /// Copies at most @p n bytes from the start, or from @p pos, to @p dst.
    /// @return bytes copied; for @p pos at or past the end 0 or the negative distance to it
    int GetBinary(void* dst, int n) const;
    int GetBinary(int pos, void* dst, int n) const;

    /// At most @p n bytes from @p pos as text, up to the first zero byte.
    CString GetString(int pos, int n) const;

    /// @p n zero bytes. @return 1 or 0
    int SetSize(int n);
    /// Keeps the first @p n bytes; added ones are zero or what was cut off before. @return 1 or 0
    int Resize(int n);
    int GetSize() const noexcept { return m_nSize; }

    /// The buffer itself, null while it has no memory. Valid until the next operation that changes the size.
    operator char*() noexcept { return reinterpret_cast<char*>(m_pBuffer.get()); }
    operator unsigned char*() noexcept { return m_pBuffer.get(); }
    operator const char*() const noexcept { return reinterpret_cast<const char*>(m_pBuffer.get()); }
    operator const unsigned char*() const noexcept { return m_pBuffer.get(); }

    /// Appends the bytes of @p other, which may be this buffer; the byte order stays.
    CQBinary& operator+=(const CQBinary& other);

    /// Equal bytes and equal byte orders.
    bool operator==(const CQBinary& other) const noexcept;
    bool operator!=(const CQBinary& other) const noexcept { return !(*this == other); }

    /// 1 if the buffer is exactly these @p n bytes; 0 bytes are equal to an empty one.
    int Compare(const void* data, int n) const noexcept;
    /// 1 if these @p n bytes are at @p pos; 0 bytes are anywhere except past the end.
    int Compare(int pos, const void* data, int n) const noexcept;

    /// Removes @p n bytes from the start. Kept: this also resets the byte order to lowest first and the capacity to the
    /// bytes left, at least 1024. If @p n is too large, the buffer becomes empty and its byte order stays.
    void DeleteTop(int n);

    // --- Numbers at a position; outside the buffer they read as 0 and are not written ---

    /// 1: highest byte first in 16- and 32-bit numbers; any other value: lowest first.
    void SetEndian(int endian) noexcept { m_nEndian = endian; }
    int GetEndian() const noexcept { return m_nEndian; }

    void SetByte(int pos, unsigned char value) noexcept;
    unsigned char GetByte(int pos) const noexcept;
    void SetShort(int pos, short value) noexcept;
    short GetShort(int pos) const noexcept;
    void SetInt(int pos, int value) noexcept;
    int GetInt(int pos) const noexcept;

    // --- Appending ---

    void AddByte(unsigned char value) { AddBinary(&value, 1); }
    void AddInt(int value);

    /// Kept: with a null pointer the size still grows by @p n, and a negative @p n removes bytes from the end.
    void AddBinary(const void* data, int n) {
        if (m_pBuffer != nullptr && data != nullptr && n > 0 && n <= m_nCapacity - m_nSize && !IsOwn(data)) {
            std::memcpy(m_pBuffer.get() + m_nSize, data, static_cast<std::size_t>(n));
            m_nSize += n;
        } else {
            AddAndGrow(data, n);
        }
    }

    /// Without the terminating zero.
    void AddString(const char* s);

    /// A number as a text field of @p width characters: "-" or a blank, then CQVariant::IntToStr(value, width - 1).
    /// Instruments expect the minus sign of a negative number in both places: -5 in width 4 is "- -5".
    void AddStrIntTopSign(int value, int width);

    /// The same with the last width - 1 characters of ten blanks followed by CQVariant::DoubleToStr(value, decimals,
    /// roundMode): 1.5 in width 6 with two decimals is "  1.50". A wider field is not filled up.
    void AddDoubleTopSign(double value, int width, int decimals, int roundMode);

    // --- Debugging ---

    /// Goes through the bytes, writes nothing and pauses 50 ms at every index that is a multiple of @p n, including the
    /// first; 0 does nothing.
    void DebugDump(int n) const;
    void DumpCSource(int n) const { DebugDump(n); }

protected:
    /// Allocates a zeroed buffer of the capacity, or of @p n bytes if that is more. A buffer that is large enough does
    /// not change, a smaller one is freed with its contents.
    /// @return 1; 0 leaves no buffer
    int AllocateBuffer(int n);
    /// Provides a capacity of at least @p n bytes, as described at the class, and keeps the contents.
    /// @return 1; 0 does not change the buffer
    int ReallocateBuffer(int n);
    /// The capacity does not change.
    void FreeBuffer() noexcept;

    int GetCapacity() const noexcept { return m_nCapacity; }

private:
    struct Free {
        void operator()(unsigned char* block) const noexcept { std::free(block); }
    };

    static constexpr int kSmallestCapacity = 256;  // of a copy, until it takes its source's
    static constexpr int kFirstCapacity = 1024;

    bool Holds(int pos, int width) const noexcept { return pos >= 0 && pos <= m_nSize - width; }
    bool IsOwn(const void* data) const noexcept {
        const auto offset = reinterpret_cast<std::uintptr_t>(data) - reinterpret_cast<std::uintptr_t>(m_pBuffer.get());
        return m_pBuffer != nullptr && offset < static_cast<std::size_t>(m_nCapacity);
    }
    void AddAndGrow(const void* data, int n);
    // Appends the last width - 1 characters of a text.
    void AddEnd(const char* begin, const char* end, int width);
    void AddSign(bool isNegative) { AddByte(isNegative ? '-' : ' '); }
    bool MoveBlock(std::size_t size) noexcept;
    void Store(CArchive& ar) const;
    void Load(CArchive& ar);
    template <class T> void SetNumber(int pos, T value) noexcept;
    template <class T> T GetNumber(int pos) const noexcept;

    int m_nEndian = 0;
    int m_nSize = 0;                   // valid bytes, at most the capacity
    int m_nCapacity = kFirstCapacity;  // bytes that callers see; at least this much is allocated
    std::size_t m_nBlock = 0;          // bytes of the block: doubles where the capacity grows in steps
    std::unique_ptr<unsigned char, Free> m_pBuffer;
};
