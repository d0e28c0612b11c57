#include "qellib10/secure/cabinet_reader.h"

#include <algorithm>

#include "qellib10/platform/error.h"

#include "qellib10/file/file_check_sums.h"
#include "qellib10/secure/cabinet_content.h"
#include "qellib10/secure/history_cabinet_format.h"
#include "qellib10/secure/history_renew_format.h"

namespace qel {
namespace {

constexpr std::string_view View(const std::array<char, 4>& magic) { return {magic.data(), magic.size()}; }

constexpr std::string_view kOfCabinet = View(kCabinetMagic), kOfVersion = View(kVersionMagic);
static_assert(kCabinetKindBytes == kCabinetHeaderSize + kOfVersion.size());

}  // namespace

CabinetFileKind KindOfCabinetFile(std::string_view start) {
    if (start.starts_with(kOfCabinet)) return CabinetFileKind::kCabinet;
    if (start.starts_with(RenewalHead())) return CabinetFileKind::kRenewals;
    const bool hasVersion =
        start.size() >= kCabinetKindBytes && start.substr(kCabinetHeaderSize).starts_with(kOfVersion);
    return hasVersion ? CabinetFileKind::kCabinet : CabinetFileKind::kOther;
}

bool MayBeCutVersion(std::string_view bytes) {
    const std::string_view tag = bytes.substr(0, kOfVersion.size());
    return kOfVersion.starts_with(tag) || tag.find_first_not_of('\0') == std::string_view::npos;
}

CabinetReader::CabinetReader(const CFile& cabinet)
    : m_file(cabinet), m_header(ReadCabinetHeader(cabinet)), m_end(kCabinetHeaderSize) {}

std::optional<CabinetVersion> CabinetReader::Next() {
    if (m_given == m_header.versionCount) return std::nullopt;
    const auto [header, dataAt, end] = ReadVersionAt(m_file, m_end);
    if (header.version != m_given + 1) throw DataError("another version in its place");
    if (header.version == m_header.versionCount && m_end != m_header.latestOffset)
        throw DataError("the latest version is not where the header says");
    if (end > m_file.GetLength()) throw CFileException(CFileException::endOfFile, -1, m_file.GetFilePath());
    m_given = header.version;
    m_end = end;
    return CabinetVersion{header.version, header.dataSize, header.dataSum, header.dataCRC, dataAt};
}

CabinetVersion CabinetReader::Latest() const {
    if (m_header.versionCount == 0) throw DataError("the cabinet has no version");
    const auto [header, dataAt, end] = ReadVersionAt(m_file, m_header.latestOffset);
    if (header.version != m_header.versionCount) throw DataError("the latest version is not where the header says");
    if (end > m_file.GetLength()) throw CFileException(CFileException::endOfFile, -1, m_file.GetFilePath());
    return {header.version, header.dataSize, header.dataSum, header.dataCRC, dataAt};
}

ULONGLONG CabinetReader::BytesAfterLatest() const {
    const bool isEmpty = m_header.versionCount == 0;
    const ULONGLONG end = isEmpty ? kCabinetHeaderSize : ReadVersionAt(m_file, m_header.latestOffset).end;
    const ULONGLONG length = m_file.GetLength();
    return length - std::min(end, length);
}

bool CabinetReader::IsIntact(const CabinetVersion& version) const {
    const CheckSums sums = CheckSumsAt(m_file, version.dataAt, version.size);
    return sums.Sum() == version.sum && sums.Crc() == version.crc;
}

}  // namespace qel
