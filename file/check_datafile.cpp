#include "qellib10/file/check_datafile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <vector>

#include "qellib10/file/bytes_at.h"
#include "qellib10/file/check_datafile_format.h"
#include "qellib10/file/file_check_sums.h"
#include "qellib10/file/write_undo.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"

namespace {

using qel::CheckBlock;
using qel::CheckSums;
using qel::FailureKind;
using qel::Refuse;
using qel::SealInfo;

void ReadExactly(CFile& file, std::span<std::byte> bytes) {
    if (file.Read(bytes.data(), static_cast<UINT>(bytes.size())) != bytes.size())
        throw qel::DataError("file too short");
}

void Write(CFile& file, std::span<const std::byte> bytes) { file.Write(bytes.data(), static_cast<UINT>(bytes.size())); }

DWORD ReadNumber(CFile& file) {
    std::array<std::byte, sizeof(DWORD)> bytes;
    ReadExactly(file, bytes);
    return qel::FromLittleEndian<DWORD>(bytes);
}

constexpr std::size_t kLongestTrailer = SealInfo::kLengthSize + SealInfo::kLongest + CheckBlock::kSize;

// The highest version, in a forged file, also has a next one.
int Next(int version) { return static_cast<int>(static_cast<DWORD>(version) + 1); }

CString NameOf(const CFile& file) { return CQFile::GetFilenameFromPath(file.GetFilePath()); }

DWORD NumberAt(const CFile& file, ULONGLONG offset) {
    return qel::FromLittleEndian<DWORD>(qel::BytesAt<sizeof(DWORD)>(file, offset));
}

constexpr std::string_view kUnsealed = "not sealed";

struct Seal {
    ULONGLONG at = 0;    // where the trailer starts
    CheckSums dataSums;  // of the bytes before it
};

std::nullopt_t NoSeal(const CFile& file, std::string_view why) {
    Refuse(FailureKind::kData, file.GetFilePath().View(), why);
    return std::nullopt;
}

// The seal of a file, found in one pass; nothing when there is none that is right, which is recorded.
// @throws CFileException for a file that cannot be read, which does not mean that it has no seal
std::optional<Seal> FindSeal(const CFile& file) {
    const ULONGLONG length = file.GetLength();
    if (length < CheckBlock::kSize) return NoSeal(file, kUnsealed);
    const ULONGLONG end = length - CheckBlock::kSize;
    const CheckBlock check = CheckBlock::Unpack(qel::BytesAt<CheckBlock::kSize>(file, end));
    if (check.TrailerSize() > length) return NoSeal(file, kUnsealed);
    Seal seal = {.at = length - check.TrailerSize(), .dataSums = CheckSums()};
    if (!check.Fits(NumberAt(file, seal.at))) return NoSeal(file, kUnsealed);
    qel::AddCheckSumsAt(seal.dataSums, file, 0, seal.at);
    CheckSums sums = seal.dataSums;
    qel::AddCheckSumsAt(sums, file, seal.at, end - seal.at);
    if (sums.Crc() != check.crc || sums.Sum() != check.sum) return NoSeal(file, "not sealed, or changed since");
    return seal;
}

}  // namespace

CCheckDatafile::CCheckDatafile() { InitializeData(); }
CCheckDatafile::~CCheckDatafile() = default;

void CCheckDatafile::InitializeData() {
    m_nCheckFilename = 1;
    m_szFilename.Empty();
    m_nVersion = 0;
    m_guid.SetNull();
}

bool CCheckDatafile::operator==(const CCheckDatafile& other) const {
    if (m_nCheckFilename != 0 && !(m_szFilename == other.m_szFilename)) return false;
    return m_nVersion == other.m_nVersion && m_guid == other.m_guid;
}

int CCheckDatafile::PackNewData(CQFile* file) {
    if (file == nullptr) return qel::RefuseNull("CCheckDatafile::PackNewData");
    return qel::AsResult("CCheckDatafile::PackNewData", file, [&] {
        CCheckDatafile().Append(*file);
        return 1;
    });
}

int CCheckDatafile::PackUpdateData(CQFile* file, int isNew) {
    if (file == nullptr) return qel::RefuseNull("CCheckDatafile::PackUpdateData");
    return qel::AsResult("CCheckDatafile::PackUpdateData", file, [&] {
        const std::optional<Seal> seal = FindSeal(*file);
        if (isNew != 0 && seal) return Refuse(FailureKind::kData, file->GetFilePath().View(), "sealed already");
        if (isNew == 0 && (!seal || !TakeInfo(*file, seal->at))) return 0;
        CCheckDatafile next(*this);  // this object stays as it is when the file cannot be written
        if (isNew != 0) {
            next.Append(*file);
        } else {
            qel::WriteUndo trailer(*file, seal->at, kLongestTrailer);
            next.m_nVersion = Next(m_nVersion);
            next.WriteTrailer(*file, seal->dataSums);
            trailer.Keep();
        }
        *this = next;
        return 1;
    });
}

void CCheckDatafile::Append(CQFile& file) {
    if (m_guid.IsNull()) m_guid = CGuid::CreateNewGuid();
    if (m_guid.IsNull()) throw qel::DataError("no random bytes for a GUID");
    qel::WriteUndo trailer(file, file.GetLength());
    m_nVersion = Next(m_nVersion);
    UpdatePackData(&file);
    trailer.Keep();
}

int CCheckDatafile::ReadPackData(CQFile* file) {
    if (file == nullptr) return qel::RefuseNull("CCheckDatafile::ReadPackData");
    return qel::AsResult("CCheckDatafile::ReadPackData", file, [&] {
        const std::optional<Seal> seal = FindSeal(*file);
        return seal ? TakeInfo(*file, seal->at) : 0;
    });
}

int CCheckDatafile::TakeInfo(const CQFile& file, ULONGLONG trailerAt) {
    std::array<std::byte, SealInfo::kLongest> buffer;
    const auto bytes = std::span(buffer).first(std::min<std::size_t>(NumberAt(file, trailerAt), SealInfo::kLongest));
    const CString path = file.GetFilePath();
    const std::size_t got =
        qel::ReadFullyAt(file.ReadableDescriptor(), bytes, trailerAt + SealInfo::kLengthSize, path.View());
    const SealInfo info = SealInfo::Unpack(bytes.first(got));
    m_szFilename = info.name;
    m_nVersion = static_cast<int>(info.version);
    m_guid = info.guid;
    if (m_nCheckFilename == 0 || NameOf(file) == m_szFilename) return 1;
    return Refuse(FailureKind::kData, path.View(), "sealed under another name");
}

int CCheckDatafile::IsPackData(CQFile* file) {
    if (file == nullptr) return qel::RefuseNull("CCheckDatafile::IsPackData");
    return qel::AsResult("CCheckDatafile::IsPackData", file, [&] { return FindSeal(*file) ? 1 : 0; });
}

int CCheckDatafile::CheckCRC(CQFile* file) {
    const ULONGLONG end = GetCheckPos(file->GetLength());
    file->Seek(static_cast<LONGLONG>(end + CheckBlock::kCrcAt), CFile::begin);
    const DWORD crc = ReadNumber(*file);
    return qel::CheckSumsOf(*file, end, CheckSums::kCrc).Crc() == crc ? 1 : 0;
}

int CCheckDatafile::CheckSUM(CQFile* file) {
    const ULONGLONG end = GetCheckPos(file->GetLength());
    file->Seek(static_cast<LONGLONG>(end + CheckBlock::kSumAt), CFile::begin);
    const DWORD sum = ReadNumber(*file);
    return qel::CheckSumsOf(*file, end, CheckSums::kSum).Sum() == sum ? 1 : 0;
}

int CCheckDatafile::CheckSize(CQFile* file) {
    DWORD trailerLength = 0;
    SeekAddDataTop(file, &trailerLength);
    return CheckBlock{.trailerLength = trailerLength}.Fits(ReadNumber(*file)) ? 1 : 0;
}

void CCheckDatafile::SeekAddDataTop(CQFile* file, DWORD* trailerLength) {
    constexpr LONGLONG kFieldSize = sizeof(DWORD);
    file->Seek(-kFieldSize, CFile::end);
    const DWORD length = ReadNumber(*file);
    file->Seek(-LONGLONG{length} - kFieldSize, CFile::end);
    if (trailerLength != nullptr) *trailerLength = length;
}

// The record of this object's seal for @p file, whose name becomes this object's.
std::vector<std::byte> CCheckDatafile::PackInfo(const CQFile& file) {
    m_szFilename = NameOf(file);
    return SealInfo{.name = m_szFilename, .version = static_cast<std::uint32_t>(m_nVersion), .guid = GUID(m_guid)}
        .Pack();
}

void CCheckDatafile::AddFileInfo(CQFile* file, DWORD* written) {
    const auto bytes = PackInfo(*file);
    Write(*file, bytes);
    if (written != nullptr) *written = static_cast<DWORD>(bytes.size());
}

int CCheckDatafile::UpdatePackData(CQFile* file) {
    const ULONGLONG at = file->GetPosition();
    if (at > file->GetLength()) file->SetLength(at);  // the gap is read as zero bytes
    WriteTrailer(*file, qel::CheckSumsAt(*file, 0, at));
    return 1;
}

// Written by one call: between two, a killed process would leave a file without a seal.
void CCheckDatafile::WriteTrailer(CQFile& file, const CheckSums& before) {
    std::vector<std::byte> bytes = PackInfo(file);
    CheckSums sums = before;
    sums.Add({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    const CheckBlock check = {.crc = sums.Crc(),
                              .sum = sums.Sum(),
                              .trailerLength = static_cast<std::uint32_t>(bytes.size() + CheckBlock::kTrailerLengthAt)};
    const auto block = check.Pack();
    bytes.insert(bytes.end(), block.begin(), block.end());
    Write(file, bytes);
}

DWORD CCheckDatafile::GetCheckSize() { return CheckBlock::kSize; }

ULONGLONG CCheckDatafile::GetCheckPos(ULONGLONG length) {
    if (length < CheckBlock::kSize) throw qel::DataError("shorter than a check block");
    return length - CheckBlock::kSize;
}
