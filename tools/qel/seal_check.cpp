#include "seal_check.h"

#include <algorithm>
#include <span>

namespace tool {
namespace {

using qel::CheckBlock;
using qel::SealInfo;

constexpr std::size_t kTail = 4096;

std::span<const std::byte> Bytes(std::string_view text) { return std::as_bytes(std::span(text)); }

DWORD InfoLength(std::string_view trailer) {
    return SealInfo::UnpackLength(Bytes(trailer).first<SealInfo::kLengthSize>());
}

CheckBlock LastBlock(std::string_view tail) { return CheckBlock::Unpack(Bytes(tail).last<CheckBlock::kSize>()); }

std::string Tail(CQFile& file) {
    std::string tail(static_cast<std::size_t>(std::min<ULONGLONG>(file.GetLength(), kTail)), '\0');
    file.Seek(-static_cast<LONGLONG>(tail.size()), CFile::end);
    tail.resize(file.Read(tail.data(), static_cast<UINT>(tail.size())));
    return tail;
}

// A trailer by its length and one more thing: the info length, or the name.
bool EndsWithTrailer(std::string_view tail, std::string_view ownName, bool anyName) {
    constexpr std::size_t kRest = SealInfo::kNameless + CheckBlock::kSize;
    if (tail.size() < CheckBlock::kSize) return false;
    const CheckBlock check = LastBlock(tail);
    if (check.trailerLength <= kRest || check.trailerLength > SealInfo::kLongest + CheckBlock::kSize) return false;
    if (check.TrailerSize() > tail.size()) return false;
    const std::string_view trailer = tail.substr(tail.size() - check.TrailerSize());
    return (anyName && check.Fits(InfoLength(trailer))) ||
           trailer.substr(SealInfo::kLengthSize, check.trailerLength - kRest) == ownName;
}

SealInfo InfoFor(std::string_view ownName) { return {.name = CString(ownName)}; }

// The info length and the name: what the trailers for a name begin with.
std::string StartFor(std::string_view ownName) {
    const std::vector<std::byte> bytes = InfoFor(ownName).Pack();
    return {reinterpret_cast<const char*>(bytes.data()), SealInfo::kLengthSize + ownName.size() + 1};
}

// The start of a trailer for the file's own name, which was cut or to which something was appended.
Status Remains(std::string_view tail, std::string_view ownName) {
    const std::size_t at = tail.rfind(StartFor(ownName));
    if (at == std::string_view::npos) return kGood;
    const std::size_t end = at + InfoFor(ownName).Pack().size() + CheckBlock::kSize;
    if (end > tail.size()) return kCut;
    const bool isWhole = end == tail.size() || LastBlock(tail.substr(0, end)).Fits(InfoLength(tail.substr(at)));
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
    return count <= tail.size() && StartFor(ownName.View()).starts_with(tail.substr(tail.size() - count));
}

// Delegates, so that the copy is removed even if it cannot be written.
Unsealed::Unsealed(const std::string& path, CFile::OpenFlags share) : Unsealed() {
    Open(m_file, path, CFile::modeRead | share);
    m_name = m_file.GetFilePath();
    CCheckDatafile seal;
    seal.EnableCheckFilename(0);
    if (TraceOfSeal(m_file, true) == kGood || seal.ReadPackData(&m_file) == 0) return;
    const ULONGLONG length = m_file.GetLength() - LastBlock(Tail(m_file)).TrailerSize();
    m_copy = CQFile::GetTempFilePath("qel");
    const CFile copy(m_copy, CFile::modeWrite | CFile::shareExclusive);
    qel::CopyBytes(m_file.ReadableDescriptor(), 0, copy.WritableDescriptor(), 0, length, m_name.View(), m_copy.View());
}

Unsealed::~Unsealed() {
    if (!m_copy.IsEmpty()) CQFile::DeleteFiles(m_copy);
}

}  // namespace tool
