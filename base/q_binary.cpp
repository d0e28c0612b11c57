#include "qellib10/base/q_binary.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <limits>
#include <span>
#include <thread>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/endian.h"

#include "qellib10/base/q_variant.h"
#include "qellib10/base/rounded_text.h"

namespace {

constexpr int kHighestFirst = 1;  // the byte order flag; everything else is lowest first
constexpr int kStep = 1024;       // of the capacity
constexpr int kLongest = std::numeric_limits<int>::max();
constexpr int kArchivePiece = 1 << 16;

constexpr std::size_t Size(int n) { return static_cast<std::size_t>(n); }

}  // namespace

CQBinary::~CQBinary() = default;

CQBinary& CQBinary::operator=(const CQBinary& other) {
    if (this == &other) return *this;
    FreeBuffer();
    m_nCapacity = other.m_nCapacity;
    SetBinary(other.m_pBuffer.get(), other.m_nSize);
    m_nEndian = other.m_nEndian;
    return *this;
}

void CQBinary::Initialize() noexcept {
    FreeBuffer();
    m_nEndian = 0;
}

// --- Memory ---

int CQBinary::AllocateBuffer(int n) {
    const int wanted = std::max(m_nCapacity, n);
    if (wanted > m_nCapacity) FreeBuffer();
    if (m_pBuffer != nullptr) return 1;
    if (!MoveBlock(Size(wanted))) return 0;
    std::memset(m_pBuffer.get(), 0, Size(wanted));
    m_nCapacity = wanted;
    return 1;
}

int CQBinary::ReallocateBuffer(int n) {
    if (m_pBuffer == nullptr) return AllocateBuffer(n);
    if (n <= m_nCapacity) return 1;
    if (n / kStep >= kLongest / kStep) return 0;
    const int wanted = (n / kStep + 1) * kStep;
    if (Size(wanted) > m_nBlock && !MoveBlock(std::max(Size(wanted), 2 * m_nBlock)) && !MoveBlock(Size(wanted)))
        return 0;
    std::memset(m_pBuffer.get() + m_nCapacity, 0, Size(wanted - m_nCapacity));
    m_nCapacity = wanted;
    return 1;
}

// Not inlined: the compiler turns malloc followed by memset into calloc, for which the C library has no small blocks
// ready.
[[gnu::noinline]] bool CQBinary::MoveBlock(std::size_t size) noexcept {
    void* const moved = std::realloc(m_pBuffer.get(), size);
    if (moved == nullptr) return false;
    static_cast<void>(m_pBuffer.release());
    m_pBuffer.reset(static_cast<unsigned char*>(moved));
    m_nBlock = size;
    return true;
}

void CQBinary::FreeBuffer() noexcept {
    m_pBuffer.reset();
    m_nBlock = 0;
    m_nSize = 0;
}

// --- The buffer as a whole ---

int CQBinary::SetBinary(const void* data, int n) {
    if (data == nullptr || n < 1 || !AllocateBuffer(n)) return 0;
    std::memmove(m_pBuffer.get(), data, Size(n));
    m_nSize = n;
    return n;
}

int CQBinary::SetBinary(int pos, const void* data, int n) {
    if (data == nullptr || n < 1 || pos < 0 || pos > kLongest - n) return 0;
    // Data inside this buffer move with it.
    const auto* source = static_cast<const unsigned char*>(data);
    const std::ptrdiff_t offset = IsOwn(data) ? source - m_pBuffer.get() : -1;
    if (!Resize(pos + n)) return 0;
    std::memmove(m_pBuffer.get() + pos, offset >= 0 ? m_pBuffer.get() + offset : source, Size(n));
    return n;
}

int CQBinary::GetBinary(void* dst, int n) const { return GetBinary(0, dst, n); }

int CQBinary::GetBinary(int pos, void* dst, int n) const {
    if (dst == nullptr || n < 1 || pos < 0) return 0;
    const int count = std::min(n, m_nSize - pos);
    if (count > 0) std::memmove(dst, m_pBuffer.get() + pos, Size(count));
    return count;
}

CString CQBinary::GetString(int pos, int n) const {
    if (n < 1 || !Holds(pos, 1)) return {};
    const char* const text = static_cast<const char*>(*this) + pos;
    return CString(text, static_cast<int>(strnlen(text, Size(std::min(n, m_nSize - pos)))));
}

int CQBinary::SetSize(int n) {
    if (n < 0 || !AllocateBuffer(n)) return 0;
    m_nSize = n;
    std::memset(m_pBuffer.get(), 0, Size(n));
    return 1;
}

int CQBinary::Resize(int n) {
    if (n < 0 || !ReallocateBuffer(n)) return 0;
    m_nSize = n;
    return 1;
}

CQBinary& CQBinary::operator+=(const CQBinary& other) {
    if (other.m_nSize > 0) AddBinary(other.m_pBuffer.get(), other.m_nSize);
    return *this;
}

bool CQBinary::operator==(const CQBinary& other) const noexcept {
    return m_nEndian == other.m_nEndian && Compare(other.m_pBuffer.get(), other.m_nSize) != 0;
}

int CQBinary::Compare(const void* data, int n) const noexcept { return n == m_nSize ? Compare(0, data, n) : 0; }

int CQBinary::Compare(int pos, const void* data, int n) const noexcept {
    if (std::int64_t{pos} + n > m_nSize) return 0;
    if (n == 0) return 1;
    if (pos < 0 || n < 0 || data == nullptr) return 0;
    return std::memcmp(m_pBuffer.get() + pos, data, Size(n)) == 0 ? 1 : 0;
}

void CQBinary::DeleteTop(int n) {
    if (n < 0) return;
    const int left = m_nSize - n;
    if (left >= 0) {
        m_nEndian = 0;
        m_nCapacity = std::max(kFirstCapacity, left);
    }
    if (left <= 0) {
        FreeBuffer();
        return;
    }
    // In place, so that it cannot fail: the block stays, or gives back what is far too large.
    std::memmove(m_pBuffer.get(), m_pBuffer.get() + n, Size(left));
    std::memset(m_pBuffer.get() + left, 0, Size(m_nCapacity - left));
    m_nSize = left;
    if (m_nBlock / 4 > Size(m_nCapacity)) MoveBlock(Size(m_nCapacity));
}

// --- Numbers at a position ---

namespace {

template <class T> std::array<std::byte, sizeof(T)> InOrder(T value, int endian) {
    std::array bytes = qel::ToLittleEndian(value);
    if (endian == kHighestFirst) std::ranges::reverse(bytes);
    return bytes;
}

}  // namespace

template <class T> void CQBinary::SetNumber(int pos, T value) noexcept {
    if (!Holds(pos, sizeof(T))) return;
    const std::array bytes = InOrder(value, m_nEndian);
    std::memcpy(m_pBuffer.get() + pos, bytes.data(), bytes.size());
}

template <class T> T CQBinary::GetNumber(int pos) const noexcept {
    if (!Holds(pos, sizeof(T))) return 0;
    std::array<std::byte, sizeof(T)> bytes;
    std::memcpy(bytes.data(), m_pBuffer.get() + pos, bytes.size());
    if (m_nEndian == kHighestFirst) std::ranges::reverse(bytes);
    return qel::FromLittleEndian<T>(bytes);
}

void CQBinary::SetByte(int pos, unsigned char value) noexcept { SetNumber(pos, value); }
unsigned char CQBinary::GetByte(int pos) const noexcept { return GetNumber<unsigned char>(pos); }
void CQBinary::SetShort(int pos, short value) noexcept { SetNumber(pos, value); }
short CQBinary::GetShort(int pos) const noexcept { return GetNumber<short>(pos); }
void CQBinary::SetInt(int pos, int value) noexcept { SetNumber(pos, value); }
int CQBinary::GetInt(int pos) const noexcept { return GetNumber<int>(pos); }

// --- Appending ---

void CQBinary::AddInt(int value) {
    const std::array bytes = InOrder(value, m_nEndian);
    AddBinary(bytes.data(), static_cast<int>(bytes.size()));
}

void CQBinary::AddAndGrow(const void* data, int n) {
    if (data != nullptr && n > 0) {
        SetBinary(m_nSize, data, n);
    } else if (n <= kLongest - m_nSize) {
        Resize(m_nSize + n);
    }
}

void CQBinary::AddString(const char* s) {
    if (s == nullptr) return;
    const std::size_t length = std::strlen(s);
    if (length <= Size(kLongest)) AddBinary(s, static_cast<int>(length));
}

// Fields are built in one piece of memory: blanks, then the text; the wanted number of characters is taken from the
// end.

void CQBinary::AddStrIntTopSign(int value, int width) {
    constexpr int kBlanks = 32;
    AddSign(value < 0);
    std::array<char, kBlanks + std::numeric_limits<int>::digits10 + 2> field;
    std::fill_n(field.begin(), kBlanks, ' ');
    const char* const end = std::to_chars(field.data() + kBlanks, field.data() + field.size(), value).ptr;
    if (width <= kBlanks + 1) {
        AddEnd(field.data(), end, width);
    } else {
        const CString wide = CQVariant::IntToStr(value, width - 1);
        AddBinary(static_cast<const char*>(wide), wide.GetLength());
    }
}

void CQBinary::AddDoubleTopSign(double value, int width, int decimals, int roundMode) {
    constexpr int kBlanks = 10;
    AddSign(value < 0);
    std::array<char, kBlanks + qel::kQuickTextSize> field;
    std::fill_n(field.begin(), kBlanks, ' ');
    char* const text = field.data() + kBlanks;
    if (const int length = decimals > 0 ? qel::WriteQuickRoundedText(value, decimals, roundMode, text) : 0;
        length > 0) {
        AddEnd(field.data(), text + length, width);
    } else {
        const CString padded = CString(' ', kBlanks) + CQVariant::DoubleToStr(value, decimals, roundMode);
        AddEnd(padded, static_cast<const char*>(padded) + padded.GetLength(), width);
    }
}

void CQBinary::AddEnd(const char* begin, const char* end, int width) {
    const int field = static_cast<int>(std::clamp<std::ptrdiff_t>(std::ptrdiff_t{width} - 1, 0, end - begin));
    AddBinary(end - field, field);
}

// --- Archive ---

void CQBinary::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        Store(ar);
    } else {
        Load(ar);
    }
}

void CQBinary::Store(CArchive& ar) const {
    ar << m_nSize;
    if (m_nSize > 0) ar.Write(m_pBuffer.get(), static_cast<UINT>(m_nSize));
    ar << m_nEndian;
}

void CQBinary::Load(CArchive& ar) {
    int size = 0;
    ar >> size;
    m_nSize = 0;
    const auto tooShort = [&] {
        FreeBuffer();
        return CArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
    };
    const std::optional<ULONGLONG> left = ar.BytesLeft();
    if (left && size > 0 && Size(size) > *left) throw tooShort();

    // All at once, or in pieces if the file's length is unknown: memory grows only with the bytes that arrive.
    const int piece = left ? size : std::min(size, kArchivePiece);
    bool isAllocated = size >= 0 && AllocateBuffer(piece) != 0;
    int have = 0;
    while (isAllocated && have < size) {
        const int part = std::min(size - have, piece);
        isAllocated = ReallocateBuffer(have + part) != 0;
        if (isAllocated && ar.Read(m_pBuffer.get() + have, static_cast<UINT>(part)) != static_cast<UINT>(part))
            throw tooShort();
        have += part;
    }
    if (isAllocated) m_nSize = have;
    ar >> m_nEndian;
}

// --- Debugging ---

void CQBinary::DebugDump(int n) const {
    if (n == 0) return;
    const std::int64_t step = std::abs(std::int64_t{n});
    for (std::int64_t at = 0; at < m_nSize; at += step) std::this_thread::sleep_for(std::chrono::milliseconds(50));
}
