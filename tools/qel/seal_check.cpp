#include "seal_check.h"

#include <algorithm>

#include "qellib10/platform/endian.h"

namespace tool {
namespace {

// A trailer is info length (4), name and zero, version (4), GUID (16), CRC (4), sum (4), trailer length (4). The info
// length counts from its own end to the CRC, the trailer length is 8 bytes more.
constexpr std::size_t kLength = 4, kAfterNameSize = 20, kCheckBlock = 12, kLongestName = 259;
constexpr std::size_t kTail = 4096;

DWORD Number(std::string_view bytes, std::size_t at) {
    DWORD number = 0;
    for (std::size_t i = kLength; i > 0; --i) number = number << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
    return number;
}

std::string Tail(CQFile& file) {
    std::string tail(static_cast<std::size_t>(std::min<ULONGLONG>(file.GetLength(), kTail)), '\0');
    file.Seek(-static_cast<LONGLONG>(tail.size()), CFile::end);
    tail.resize(file.Read(tail.data(), static_cast<UINT>(tail.size())));
    return tail;
}

bool EndsWithTrailer(std::string_view tail, std::string_view ownName, bool anyName) {
    if (tail.size() < kLength) return false;
    const std::size_t length = Number(tail, tail.size() - kLength);
    const std::size_t nameless = kAfterNameSize + kCheckBlock;
    if (length <= nameless + 1 || length > kLongestName + 1 + nameless || tail.size() < length + kLength) return false;
    const std::string_view trailer = tail.substr(tail.size() - length - kLength);
    const std::string_view name = trailer.substr(kLength, length - nameless);
    return (anyName && Number(trailer, 0) == length - kCheckBlock) || name.substr(0, name.size() - 1) == ownName;
}

std::string BeginFor(std::string_view ownName) {
    const auto length = qel::ToLittleEndian(static_cast<DWORD>(ownName.size() + 1 + kAfterNameSize));
    std::string begin(reinterpret_cast<const char*>(length.data()), length.size());
    return begin.append(ownName) += '\0';
}

// The start of a trailer for the file's own name, which was cut or to which something was appended.
Status Remains(std::string_view tail, std::string_view ownName) {
    const std::size_t infoLength = ownName.size() + 1 + kAfterNameSize;
    const std::size_t at = tail.rfind(BeginFor(ownName));
    if (at == std::string_view::npos) return kGood;
    const std::size_t end = at + kLength + infoLength + kCheckBlock;
    if (end > tail.size()) return kCut;
    const bool isWhole = end == tail.size() || Number(tail, end - kLength) == infoLength + kCheckBlock;
    return isWhole ? kChanged : kGood;
}

}  // namespace

Status TraceOfSeal(CQFile& file, bool anyName) {
    const std::string tail = Tail(file);
    const CString ownName = file.GetFileName();
    return EndsWithTrailer(tail, ownName.View(), anyName) ? kChanged : Remains(tail, ownName.View());
}

bool BeginsSeal(CQFile& file, ULONGLONG end) {
    const std::string tail = Tail(file);
    const ULONGLONG count = file.GetLength() - end;
    const CString ownName = file.GetFileName();
    return count <= tail.size() && BeginFor(ownName.View()).starts_with(tail.substr(tail.size() - count));
}

// Delegates, so that the copy is removed even if it cannot be written.
Unsealed::Unsealed(const std::string& path, CFile::OpenFlags share) : Unsealed() {
    Open(m_file, path, CFile::modeRead | share);
    m_name = m_file.GetFilePath();
    CCheckDatafile seal;
    seal.EnableCheckFilename(0);
    if (TraceOfSeal(m_file, true) == kGood || seal.ReadPackData(&m_file) == 0) return;
    const std::string tail = Tail(m_file);
    const ULONGLONG length = m_file.GetLength() - kLength - Number(tail, tail.size() - kLength);
    m_copy = CQFile::GetTempFilePath("qel");
    const CFile copy(m_copy, CFile::modeWrite | CFile::shareExclusive);
    qel::CopyBytes(m_file.ReadableDescriptor(), 0, copy.WritableDescriptor(), 0, length, m_name.View(), m_copy.View());
}

Unsealed::~Unsealed() {
    if (!m_copy.IsEmpty()) CQFile::DeleteFiles(m_copy);
}

}  // namespace tool
