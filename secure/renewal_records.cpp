#include "qellib10/secure/renewal_records.h"

#include <string>

#include "qellib10/platform/archive/archive.h"

#include "qellib10/secure/history_renew_format.h"

namespace qel {
namespace {

std::string BytesAt(CFile& file, ULONGLONG offset, std::size_t count) {
    std::string bytes(count, '\0');
    file.Seek(static_cast<LONGLONG>(offset), CFile::begin);
    bytes.resize(file.Read(bytes.data(), static_cast<UINT>(count)));
    return bytes;
}

}  // namespace

RenewalRecords ReadRenewalRecords(CFile& file) {
    const std::string head = RenewalHead();
    RenewalRecords records;
    records.end = file.GetPosition();
    while (records.end < file.GetLength() && head.starts_with(BytesAt(file, records.end, head.size()))) {
        file.Seek(static_cast<LONGLONG>(records.end), CFile::begin);
        CHistoryRenewInfo record;
        try {
            CArchive archive(&file, CArchive::load);
            record.Serialize(archive);
            archive.Close();
        } catch (const CArchiveException& error) {
            records.isCut = error.m_cause == CArchiveException::endOfFile;
            break;
        }
        records.whole.push_back(record);
        records.end = file.GetPosition();
    }
    return records;
}

}  // namespace qel
