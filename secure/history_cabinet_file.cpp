#include "qellib10/secure/history_cabinet_file.h"

#include <exception>
#include <limits>
#include <span>
#include <string>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/make_folders.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"

#include "qellib10/file/file_check_sums.h"
#include "qellib10/secure/cabinet_content.h"
#include "qellib10/secure/cabinet_undo.h"
#include "qellib10/secure/history_cabinet_format.h"
#include "qellib10/secure/version_ends.h"

namespace {

constexpr UINT kForReading = CFile::modeRead | CFile::shareDenyWrite;
constexpr UINT kForWriting = CFile::modeReadWrite | CFile::shareDenyWrite;
constexpr UINT kNew = CFile::modeCreate | kForWriting;

using qel::FailureKind;
using qel::Refuse;
using qel::StoredVersion;

constexpr ULONGLONG kFirstVersionAt = qel::kCabinetHeaderSize;
constexpr DWORD kLargest = std::numeric_limits<DWORD>::max();

void Write(CFile& file, ULONGLONG offset, std::span<const std::byte> bytes) {
    file.Seek(static_cast<LONGLONG>(offset), CFile::begin);
    file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
}

// The content of an open cabinet.
class Content {
public:
    explicit Content(const CFile& cabinet) : m_cabinet(cabinet) {}

    StoredVersion Latest(const qel::CabinetHeader& header) const {
        if (header.latestOffset < kFirstVersionAt) throw qel::DataError("a version within the header");
        const StoredVersion latest = VersionAt(header.latestOffset);
        if (latest.header.version != header.versionCount) throw qel::DataError("not the latest version");
        return latest;
    }
    // Each step advances by at least a header, so the walk ends at the latest with the file.
    // @param ends where versions 1, 2, ... end, as far as they have been found in this order
    StoredVersion Find(DWORD version, DWORD count, qel::VersionEnds& ends) const {
        const auto [start, startEnd] = ends.Before(version, kFirstVersionAt);
        bool isInOrder = true;
        DWORD last = start;
        for (ULONGLONG offset = startEnd;;) {
            const StoredVersion found = VersionAt(offset);
            const DWORD number = found.header.version;
            if (number > count) throw qel::DataError("a version that was never registered");
            isInOrder = isInOrder && number == last + 1;
            if (isInOrder) ends.Add({number, found.end});
            last = number;
            if (number == version) return found;
            offset = found.end;
        }
    }
    // The end of the registered versions, where the next one starts. Remains of a crash may follow.
    ULONGLONG End(const qel::CabinetHeader& header) const {
        if (header.versionCount == 0) return kFirstVersionAt;
        const ULONGLONG end = Latest(header).end;
        if (end > m_cabinet.GetLength()) throw qel::DataError("the file ends within the latest version");
        return end;
    }

private:
    StoredVersion VersionAt(ULONGLONG offset) const { return qel::ReadVersionAt(m_cabinet, offset); }

    const CFile& m_cabinet;
};

// @param find gives the version; not asked before the target is there
template <class Find>
int Extract(const char* operation, CQFile& cabinet, bool hasVersion, const char* target, Find&& find) {
    return qel::AsResult(operation, &cabinet, [&] {
        if (!cabinet.IsOpen()) return Refuse(FailureKind::kState, "", "no cabinet is open");
        if (!hasVersion) return Refuse(FailureKind::kMissing, cabinet.GetFilePath().View(), "no such version");
        CFile to(target, kNew);
        const StoredVersion version = find();
        const qel::CheckSums sums = qel::CopyWithCheckSums(cabinet, version.dataAt, to, version.header.dataSize);
        to.Close();
        if (sums.Sum() == version.header.dataSum && sums.Crc() == version.header.dataCRC) return 1;
        return Refuse(FailureKind::kData, cabinet.GetFilePath().View(), "the version's data are changed");
    });
}

void RequireSpace(const qel::CabinetHeader& header, ULONGLONG end, ULONGLONG size) {
    if (header.versionCount == kLargest || end + qel::kVersionHeaderSize + size > kLargest)
        throw qel::DataError("no space for another version");
}

}  // namespace

CHistoryCabinetFile::CHistoryCabinetFile()
    : m_pFile(std::make_shared<CQFile>()),
      m_pEnds(std::make_shared<qel::VersionEnds>()),
      m_pIsHalfDone(std::make_shared<bool>(false)) {
    InitCabFileHeader();
}
CHistoryCabinetFile::CHistoryCabinetFile(const CHistoryCabinetFile& other) = default;
CHistoryCabinetFile& CHistoryCabinetFile::operator=(const CHistoryCabinetFile& other) = default;
CHistoryCabinetFile::~CHistoryCabinetFile() = default;

int CHistoryCabinetFile::Create(const char* path) {
    Initialize();
    return qel::AsResult("CHistoryCabinetFile::Create", [&] {
        const CString name(path);
        qel::MakeFolders(name.View().substr(0, qel::NameStart(name.View())));
        return m_pFile->Open(name, kNew) ? 1 : 0;
    });
}

int CHistoryCabinetFile::Open(const char* path, int readOnly) {
    Initialize();
    return qel::AsResult("CHistoryCabinetFile::Open", m_pFile.get(), [&] {
        if (!m_pFile->Open(path, readOnly != 0 ? kForReading : kForWriting)) return 0;
        if (ReadCabFileHeader()) return 1;
        Initialize();
        return 0;
    });
}

int CHistoryCabinetFile::Close() {
    return qel::Succeeds("CHistoryCabinetFile::Close", [&] { m_pFile->Close(); });
}

void CHistoryCabinetFile::Initialize() {
    m_pFile->Abort();
    m_pEnds->Clear();
    *m_pIsHalfDone = false;
    InitCabFileHeader();
}

int CHistoryCabinetFile::RegistNewVersion(const char* source) {
    return qel::AsResult("CHistoryCabinetFile::RegistNewVersion", m_pFile.get(), [&] {
        m_pFile->WritableDescriptor();  // throws when nothing is open, or for reading only
        if (*m_pIsHalfDone) throw qel::DataError("a registration that could not be undone");
        CFile from(source, kForReading);
        // A cabinet that was only created is not in the file yet. Otherwise the file is read: a copy of this object may
        // have registered versions meanwhile.
        const bool isCreated = m_header.versionCount == 0 && m_pFile->GetLength() == 0;
        if (!isCreated && !ReadCabFileHeader()) return 0;
        const ULONGLONG end = Content(*m_pFile).End(m_header);
        const ULONGLONG size = from.GetLength();
        RequireSpace(m_header, end, size);
        AppendOrUndo(from, static_cast<DWORD>(size), end);
        return 1;
    });
}

void CHistoryCabinetFile::AppendOrUndo(const CFile& source, DWORD size, ULONGLONG end) {
    const qel::CabinetUndo undo(*m_pFile, m_header, end);
    *m_pIsHalfDone = true;
    try {
        Append(source, size, end);
    } catch (const std::exception& cause) {
        m_header = undo.Header();
        try {
            undo.Run();
        } catch (const CFileException& failure) {
            undo.LeaveCopy();
            throw qel::DataError(std::string(cause.what()) + ", and not undone: " + failure.what());
        }
        *m_pIsHalfDone = false;
        undo.LeaveCopy();
        throw;
    }
    *m_pIsHalfDone = false;
}

// The data are on disk before the header that refers to them is written.
void CHistoryCabinetFile::Append(const CFile& source, DWORD size, ULONGLONG end) {
    if (m_pFile->GetLength() > end) m_pFile->SetLength(end);
    if (m_header.versionCount == 0) {
        m_header.latestOffset = static_cast<DWORD>(end);
        WriteHeader();
        const CString path = m_pFile->GetFilePath();
        qel::FlushFolderOf(qel::ToPosixPath(path.View()), path.View());
    }

    _CAB_VERSIONHEADER version;
    InitCabVerHeader(version);
    version.version = m_header.versionCount + 1;
    version.dataSize = size;
    m_pFile->Seek(static_cast<LONGLONG>(end + qel::kVersionHeaderSize), CFile::begin);
    const qel::CheckSums sums = qel::CopyWithCheckSums(source, 0, *m_pFile, size);
    version.dataSum = sums.Sum();
    version.dataCRC = sums.Crc();
    Write(*m_pFile, end, qel::Pack(version));
    m_pFile->Flush();

    m_header.latestOffset = static_cast<DWORD>(end);
    m_header.versionCount = version.version;
    WriteHeader();
}

void CHistoryCabinetFile::WriteHeader() {
    if (!UpdateCabFileHeader()) throw CFileException(CFileException::invalidFile, -1, m_pFile->GetFilePath());
    m_pFile->Flush();
}

int CHistoryCabinetFile::GetLatestVersionFile(const char* target) {
    const bool hasVersion = m_header.versionCount != 0;
    return Extract("CHistoryCabinetFile::GetLatestVersionFile", *m_pFile, hasVersion, target,
                   [&] { return Content(*m_pFile).Latest(m_header); });
}

int CHistoryCabinetFile::GetVersionFile(DWORD version, const char* target) {
    const bool hasVersion = version != 0 && version <= m_header.versionCount;
    return Extract("CHistoryCabinetFile::GetVersionFile", *m_pFile, hasVersion, target,
                   [&] { return Content(*m_pFile).Find(version, m_header.versionCount, *m_pEnds); });
}

void CHistoryCabinetFile::InitCabFileHeader() {
    m_header = {};
    m_header.magic = qel::kCabinetMagic;
    m_header.guid = CGuid::CreateNewGuid();
}

int CHistoryCabinetFile::ReadCabFileHeader() {
    if (!m_pFile->IsOpen()) {
        InitCabFileHeader();
        return 0;
    }
    return qel::AsResult(nullptr, m_pFile.get(), [&] {
        m_header = qel::ReadCabinetHeader(*m_pFile);
        return 1;
    });
}

int CHistoryCabinetFile::UpdateCabFileHeader() {
    return qel::Succeeds([&] {
        const auto writeWith = [&](const qel::CheckSums& sums) {
            m_header.sum = sums.Sum();
            m_header.crc = sums.Crc();
            Write(*m_pFile, 0, qel::Pack(m_header));
        };
        writeWith(qel::CheckSumsOf(m_header));
        writeWith(qel::CheckSumsOf(*m_pFile, qel::kCheckedHeaderSize));
    });
}

void CHistoryCabinetFile::InitCabVerHeader(_CAB_VERSIONHEADER& header) {
    header = {};
    header.magic = qel::kVersionMagic;
}
