#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "qellib10/platform/archive/archive_exception.h"
#include "qellib10/platform/archive/object.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/ole_date_time.h"
#include "qellib10/platform/types.h"

namespace qel {

/// Types that an archive keeps as plain bytes. A value is stored in the width of its own type, without conversion.
template <class T>
concept ArchiveScalar = (std::integral<T> || std::floating_point<T>)&&sizeof(T) <= 8 && !std::same_as<T, wchar_t> &&
                        !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

}  // namespace qel

/// Stores values in a file and loads them in the same order, in the framework's bytes, so that archives travel between
/// both systems. It prevents the mistake of trusting a damaged file: a length or count from an archive takes no memory
/// before the bytes are there, and whatever does not fit throws.
///
/// @code
/// CFile file("method.arc", CFile::modeCreate | CFile::modeReadWrite);
/// CArchive archive(&file, CArchive::store);
/// archive << 16.519 << CString("EP");
/// archive.Close();  // the last bytes reach the file here; a full disk throws
/// @endcode
///
/// An archive has one direction for its life. Its bytes:
///
///     number          its bytes, lowest first; bool is one byte
///     text            length, bytes, no terminator. The length is one byte up to 254, then FF and a word up to 65533,
///                     then FF FFFF and a double word. When reading: FF FFFE before the length announces UTF-16LE
///     count           a word below FFFF, else FFFF and a double word
///     object pointer  a word 0 for null; 1 to 7FFE the number of an object that is in the archive already; 8000 +
///                     class number, and the object's data; FFFF, schema (word), name length (word), name, and the data
///                     of the class's first object. Numbers from 7FFF on: 7FFF and a double word, bit 31 for a class.
///                     Classes and objects are numbered together from 1 as they appear, an object before its data
///
/// A Serialize called directly writes no object header.
///
/// Failures throw: CArchiveException for the archive itself, CFileException from the file. The file must stay open
/// until the archive is closed; until then its position belongs to the archive. One thread at a time.
///
/// Numbers and bytes are in archive.cpp, texts in archive_text.cpp, objects and classes in archive_object.cpp.
class QELLIB10_API CArchive {
public:
    enum Mode : UINT {
        store = 0,
        load = 1,
        bNoFlushOnDelete = 2,  ///< the destructor does not touch file and position: only Close finishes
        bNoByteSwap = 4        ///< no effect
    };

    /// Objects nested deeper than this are neither stored nor loaded (genericException): each level needs stack, and an
    /// archive of a few kilobytes could ask for all of it.
    static constexpr int kMaxNesting = 1000;

    /// @param file open; must outlive the archive; null: genericException
    /// @param bufferSize bytes, at least 128
    CArchive(CFile* file, UINT mode, int bufferSize = 4096);
    /// Closes. During another exception it throws no second one.
    ~CArchive() noexcept(false);
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    bool IsLoading() const noexcept { return (m_nMode & load) != 0; }
    bool IsStoring() const noexcept { return (m_nMode & load) == 0; }
    /// Null after the archive is closed.
    CFile* GetFile() const noexcept { return m_pFile; }

    /// @return bytes read, fewer than @p count only at the end of the file
    UINT Read(void* buffer, UINT count);
    void Write(const void* buffer, UINT count);
    /// Loading: bytes that can still be read; nothing if the file does not know its length. A size read from the
    /// archive is compared with it before memory is allocated.
    std::optional<ULONGLONG> BytesLeft() const;

    /// Storing: passes buffered bytes to the file. Loading: sets the file's position to the first byte not yet
    /// consumed.
    void Flush();
    /// Flushes and releases the file, which stays open, also if the flush fails. A second call does nothing.
    void Close();
    /// Releases the file; buffered bytes are lost.
    void Abort() noexcept;

    template <qel::ArchiveScalar T> CArchive& operator<<(T value) {
        WriteNumber(&value, sizeof value);
        return *this;
    }
    CArchive& operator<<(const CString& text);
    CArchive& operator<<(const CObject* object) {
        WriteObject(object);
        return *this;
    }

    // If a scalar or text ends too early (endOfFile), the target does not change.
    template <qel::ArchiveScalar T> CArchive& operator>>(T& value) {
        std::conditional_t<std::same_as<T, bool>, BYTE, T> stored;
        ReadNumber(&stored, sizeof stored);
        if constexpr (std::same_as<T, bool>) {
            value = stored != 0;
        } else {
            value = stored;
        }
        return *this;
    }
    CArchive& operator>>(CString& text);
    /// T declares its own GetThisClass.
    template <std::derived_from<CObject> T> CArchive& operator>>(T*& object) {
        CObject* const read = ReadObject(T::GetThisClass());
        T* const wanted = dynamic_cast<T*>(read);
        if (read != nullptr && wanted == nullptr) Throw(CArchiveException::badClass);
        object = wanted;
        return *this;
    }

    /// Number of items that follow. Reading a count above the bytes left: endOfFile, because each item needs at least
    /// one.
    void WriteCount(DWORD count);
    DWORD ReadCount();

    /// Stores a header and, the first time, the object through its Serialize. Its class must be registered and
    /// creatable, else badClass.
    void WriteObject(const CObject* object);
    /// The next object, null, or one that was read before; a new one belongs to the caller. If its Serialize throws, it
    /// is deleted; its destructor must delete what it holds by then, and no later number refers to any of these
    /// objects.
    /// @param wanted the object must be of this class or of one derived from it, else badClass; null: any class
    CObject* ReadObject(const CRuntimeClass* wanted);

    /// Path of the file, for messages.
    CString m_strFileName;

private:
    struct ObjectTables;
    struct Tag;
    class Nesting;

    [[noreturn]] void Throw(int cause) const;
    void RequireLoading() const;
    void RequireStoring() const;
    UINT TakeBuffered(std::byte* target, UINT count) noexcept;
    void ReadAll(void* buffer, UINT count);
    void ReadNumber(void* number, UINT size);
    void WriteNumber(const void* number, UINT size);
    template <class T> T Get() {
        T value;
        *this >> value;
        return value;
    }
    void RequireLeft(ULONGLONG count) const;

    ULONGLONG ReadLength(bool& isWide);
    std::string ReadBytes(ULONGLONG count);

    ObjectTables& Tables();
    void WriteTag(const Tag& tag);
    Tag ReadTag();
    void WriteClass(const CRuntimeClass* theClass);
    const CRuntimeClass* ReadNewClass();
    CObject* ReadNewObject(const CRuntimeClass* theClass);

    CFile* m_pFile;
    UINT m_nMode;
    int m_nExceptions;  // active when the archive was created
    std::vector<std::byte> m_buffer;
    std::size_t m_nAt = 0;   // next byte to read or write
    std::size_t m_nEnd = 0;  // loading: end of the bytes read from the file
    std::unique_ptr<ObjectTables> m_pTables;
};

/// The status as 4 bytes, then the day number as 8. Any status read from an archive is kept.
QELLIB10_API CArchive& operator<<(CArchive& archive, const COleDateTime& time);
QELLIB10_API CArchive& operator>>(CArchive& archive, COleDateTime& time);
