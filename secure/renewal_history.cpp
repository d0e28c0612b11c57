#include "qellib10/secure/renewal_history.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <utility>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/failure.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/make_folders.h"
#include "qellib10/platform/storage/mem_file.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/replacement.h"

#include "qellib10/file/write_undo.h"
#include "qellib10/secure/cabinet_content.h"
#include "qellib10/secure/history_cabinet_format.h"
#include "qellib10/secure/renewal_records.h"

namespace qel {
namespace {

DataError About(const CString& path, const std::string& what) {
    return DataError(std::string(CQFile::GetFilenameFromPath(path)) + ": " + what);
}

// After an operation that has returned 0.
DataError Refused(const CString& path, const std::string& what) {
    return About(path, what + ": " + LastFailure().text);
}

// A copy of a cabinet's object, which shares its open file.
class SharedCabinet : public CHistoryCabinetFile {
public:
    explicit SharedCabinet(const CHistoryCabinetFile& cabinet) : CHistoryCabinetFile(cabinet) {}
    CQFile& File() const { return *m_pFile; }
};

CabinetHeader NewHeader() {
    CabinetHeader header;
    header.magic = kCabinetMagic;
    header.guid = CGuid::CreateNewGuid();
    const CheckSums sums = CheckSumsOf(header);
    header.sum = sums.Sum();
    header.crc = sums.Crc();
    return header;
}

void WriteAgain(const CQFile& file, ULONGLONG from, ULONGLONG to) {
    const auto block = MakeIoBlock();
    const CString name = file.GetFilePath();
    while (from < to) {
        const std::span part(block->bytes, static_cast<std::size_t>(std::min<ULONGLONG>(IoBlock::kSize, to - from)));
        const std::size_t size = ReadFullyAt(file.ReadableDescriptor(), part, from, name.View());
        if (size == 0) return;
        WriteFullyAt(file.WritableDescriptor(), part.first(size), from, name.View());
        from += size;
    }
}

// Whether bytes from @p from on may be those of a record that was written when the power failed: then the disk has
// zeros instead, sector by sector, up to the length that the file was to have.
bool IsTorn(const CQFile& file, ULONGLONG from) {
    constexpr ULONGLONG kSector = 512;
    const CString name = file.GetFilePath();
    std::array<std::byte, kSector> sector;
    for (ULONGLONG end = 0; from < file.GetLength(); from = end) {
        end = std::min(from - from % kSector + kSector, file.GetLength());
        const auto part = std::span(sector).first(static_cast<std::size_t>(end - from));
        ReadFullyAt(file.ReadableDescriptor(), part, from, name.View());
        if (std::ranges::all_of(part, [](std::byte byte) { return byte == std::byte{}; })) return true;
    }
    return false;
}

}  // namespace

// Nobody else has the records open for writing meanwhile, so nobody else uses the cabinet either.
RenewalHistory::RenewalHistory(std::string_view cabinetPath, std::string_view recordPath) : m_cabinetPath(cabinetPath) {
    CFileException error;
    constexpr UINT kMode = CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite | CFile::shareDenyWrite;
    if (m_recordFile.Open(CString(recordPath), kMode, &error) == 0) throw CFileException(error);
    OpenCabinet();
    ReadRecords();
}

RenewalHistory::~RenewalHistory() = default;

// A cabinet is an empty file until its first version is registered. One that cannot be looked at may have versions, and
// the first registration would empty it.
void RenewalHistory::OpenCabinet() {
    CFile file;
    CFileException error;
    if (file.Open(m_cabinetPath, CFile::modeRead | CFile::shareDenyNone, &error) == 0) {
        if (IsMissing(error)) return;
        throw Refused(m_cabinetPath, "cannot be opened");
    }
    const ULONGLONG length = file.GetLength();
    file.Close();
    if (length == 0) return;
    if (m_cabinet.Open(m_cabinetPath, 0) == 0) throw Refused(m_cabinetPath, "cannot be opened");
    // Each would get a record.
    if (Latest() > (length - kCabinetHeaderSize) / kVersionHeaderSize)
        throw About(m_cabinetPath, "is damaged: it is too short for its number of versions");
}

// A program that ended between registering a version and adding its record has left none for it, or a part of one. Of
// a record that was torn when the power failed, texts may be read as shorter ones.
void RenewalHistory::ReadRecords() {
    RenewalRecords found = ReadRenewalRecords(m_recordFile);
    const bool isWhole = found.end == m_recordFile.GetLength();
    const DWORD records = static_cast<DWORD>(found.whole.size());
    const bool isCut = found.isCut && records + 1 == Latest();
    const auto isTorn = [&] {
        return (records == Latest() || records + 1 == Latest()) && IsTorn(m_recordFile, found.end);
    };
    if (isWhole ? records > Latest() : !isCut && !isTorn())
        throw About(m_recordFile.GetFilePath(), "is damaged, or not of this cabinet");
    if (!isWhole) m_recordFile.SetLength(found.end);
    m_records = std::move(found.whole);
    AddMissing();
}

void RenewalHistory::AddMissing() {
    while (m_records.size() < Latest()) Add({});
}

void RenewalHistory::Add(CHistoryRenewInfo record) {
    CMemFile bytes;
    CArchive archive(&bytes, CArchive::store);
    record.Serialize(archive);
    archive.Close();
    WriteUndo end(m_recordFile, m_recordFile.GetLength());
    m_recordFile.Write(bytes.Bytes().data(), static_cast<UINT>(bytes.Bytes().size()));
    m_recordFile.Flush();
    m_records.push_back(record);
    end.Keep();
}

bool RenewalHistory::MakeCabinet() {
    m_isMade = SharedCabinet(m_cabinet).File().IsOpen();
    if (m_isMade) return false;
    const std::string_view path = m_cabinetPath.View();
    MakeFolders(path.substr(0, NameStart(path)));
    Replacement made(path);
    WriteFully(made.File(), Pack(NewHeader()), path);
    made.Commit();
    if (m_cabinet.Open(m_cabinetPath, 0) == 0) throw Refused(m_cabinetPath, "cannot be opened");
    m_isMade = true;
    return true;
}

const CHistoryRenewInfo& RenewalHistory::Register(std::string_view source, std::string_view operatorName,
                                                  std::string_view comment) {
    return RegisterCopy(source, CQFile::GetFilenameFromPath(CString(source)).View(), operatorName, comment);
}

const CHistoryRenewInfo& RenewalHistory::RegisterCopy(std::string_view copy, std::string_view fileName,
                                                      std::string_view operatorName, std::string_view comment) {
    const CString path(copy);
    AddMissing();
    if (Latest() == 0 && !m_isMade && m_cabinet.Create(m_cabinetPath) == 0)
        throw Refused(m_cabinetPath, "cannot be made");
    if (m_cabinet.RegistNewVersion(path) == 0)
        throw Refused(m_cabinetPath, "cannot take " + std::string(path) + " as another version");
    CHistoryRenewInfo record;
    record.SetRenewDateTime(COleDateTime::GetCurrentTime());
    record.SetFileName(CString(fileName));
    record.SetOperator(CString(operatorName));
    record.SetComment(CString(comment));
    Add(record);
    return m_records.back();
}

void RenewalHistory::FlushAgain() {
    CQFile& file = SharedCabinet(m_cabinet).File();
    if (!file.IsOpen() || file.GetLength() == 0) return;
    const CabinetHeader header = ReadCabinetHeader(file);
    if (header.versionCount > 0) {
        WriteAgain(file, header.latestOffset, ReadVersionAt(file, header.latestOffset).end);
        file.Flush();
    }
    WriteAgain(file, 0, kCabinetHeaderSize);
    file.Flush();
}

void RenewalHistory::TakeOut(DWORD version, std::string_view target) {
    const CString path(target);
    if (version == 0 || version > Latest())
        throw About(m_cabinetPath,
                    "has no version " + std::to_string(version) + ", the latest is " + std::to_string(Latest()));
    if (m_cabinet.GetVersionFile(version, path) == 0)
        throw Refused(m_cabinetPath, "version " + std::to_string(version) + " cannot be taken out");
}

}  // namespace qel
