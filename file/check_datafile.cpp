#include "qellib10/file/check_datafile.h"

#include <algorithm>
#include <array>
#include <span>

#include "qellib10/file/check_datafile_format.h"
#include "qellib10/file/file_check_sums.h"
#include "qellib10/file/write_undo.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"

namespace {

using qel::CheckBlock;
using qel::CheckSums;
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

// The highest version of a forged file has a next one, too.
int Next(int version) { return static_cast<int>(static_cast<DWORD>(version) + 1); }

CString NameOf(const CFile& file) { return CQFile::GetFilenameFromPath(file.GetFilePath()); }

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
    if (file == nullptr) return 0;
    return qel::AsResult([&] {
        CCheckDatafile().Append(*file);
        return 1;
    });
}

int CCheckDatafile::PackUpdateData(CQFile* file, int isNew) {
    if (file == nullptr) return 0;
    return qel::AsResult([&] {
        if (isNew != 0 ? IsPackData(file) : !ReadPackData(file)) return 0;
        CCheckDatafile next(*this);  // this object stays as it is when the file cannot be written
        if (isNew != 0) {
            next.Append(*file);
        } else {
            SeekAddDataTop(file, nullptr);
            qel::WriteUndo trailer(*file, file->GetPosition(), kLongestTrailer);
            next.m_nVersion = Next(m_nVersion);
            next.UpdatePackData(file);
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
    if (file == nullptr) return 0;
    return qel::AsResult([&] { return ReadTrailer(*file); });
}

int CCheckDatafile::ReadTrailer(CQFile& file) {
    const ULONGLONG position = file.GetPosition();
    if (!IsPackData(&file)) return 0;
    SeekAddDataTop(&file, nullptr);
    std::array<std::byte, SealInfo::kLongest> room;
    const auto bytes = std::span(room).first(std::min<std::size_t>(ReadNumber(file), SealInfo::kLongest));
    ReadExactly(file, bytes);
    const SealInfo info = SealInfo::Unpack(bytes);
    file.Seek(static_cast<LONGLONG>(position), CFile::begin);
    m_szFilename = info.name;
    m_nVersion = static_cast<int>(info.version);
    m_guid = info.guid;
    return m_nCheckFilename == 0 || NameOf(file) == m_szFilename ? 1 : 0;
}

int CCheckDatafile::IsPackData(CQFile* file) {
    if (file == nullptr) return 0;
    return qel::AsResult([&] {
        // CheckCRC and CheckSUM in one pass.
        const ULONGLONG end = GetCheckPos(file->GetLength());
        file->Seek(static_cast<LONGLONG>(end), CFile::begin);
        std::array<std::byte, CheckBlock::kSize> bytes;
        ReadExactly(*file, bytes);
        const CheckBlock check = CheckBlock::Unpack(bytes);
        const CheckSums sums = qel::CheckSumsOf(*file, end);
        return sums.Crc() == check.crc && sums.Sum() == check.sum ? CheckSize(file) : 0;
    });
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
    const ULONGLONG infoLength = ReadNumber(*file);
    return infoLength + CheckBlock::kSize == trailerLength ? 1 : 0;
}

void CCheckDatafile::SeekAddDataTop(CQFile* file, DWORD* trailerLength) {
    constexpr LONGLONG kFieldSize = sizeof(DWORD);
    file->Seek(-kFieldSize, CFile::end);
    const DWORD length = ReadNumber(*file);
    file->Seek(-LONGLONG{length} - kFieldSize, CFile::end);
    if (trailerLength != nullptr) *trailerLength = length;
}

void CCheckDatafile::AddFileInfo(CQFile* file, DWORD* written) {
    m_szFilename = NameOf(*file);
    const SealInfo info = {
        .name = m_szFilename, .version = static_cast<std::uint32_t>(m_nVersion), .guid = GUID(m_guid)};
    const auto bytes = info.Pack();
    Write(*file, bytes);
    if (written != nullptr) *written = static_cast<DWORD>(bytes.size());
}

int CCheckDatafile::UpdatePackData(CQFile* file) {
    DWORD written = 0;
    AddFileInfo(file, &written);
    const CheckSums sums = qel::CheckSumsOf(*file, file->GetPosition());
    const CheckBlock check = {.crc = sums.Crc(),
                              .sum = sums.Sum(),
                              .trailerLength = static_cast<std::uint32_t>(written + CheckBlock::kTrailerLengthAt)};
    Write(*file, check.Pack());
    return 1;
}

DWORD CCheckDatafile::GetCheckSize() { return CheckBlock::kSize; }

ULONGLONG CCheckDatafile::GetCheckPos(ULONGLONG length) {
    if (length < CheckBlock::kSize) throw qel::DataError("shorter than a check block");
    return length - CheckBlock::kSize;
}
