#include "demo/result/renewals.h"

namespace titration {
namespace {

// @return false at an incomplete record
bool ReadRecord(CQFile& file, CHistoryRenewInfo& record) {
    try {
        CArchive archive(&file, CArchive::load);
        record.Serialize(archive);
        archive.Close();
        return true;
    } catch (const CArchiveException&) {
        return false;
    }
}

}  // namespace

std::vector<CHistoryRenewInfo> ReadRenewals(CQFile& file) {
    std::vector<CHistoryRenewInfo> records;
    ULONGLONG end = 0;
    while (end < file.GetLength()) {
        CHistoryRenewInfo record;
        if (!ReadRecord(file, record)) break;
        records.push_back(record);
        end = file.GetPosition();
    }
    file.Seek(static_cast<LONGLONG>(end), CFile::begin);
    return records;
}

std::string Described(const CHistoryRenewInfo& record) {
    if (record.GetOperator().IsEmpty()) return "by an unknown operator";
    const COleDateTime& time = record.GetRenewDateTime();
    CString text;
    text.Format("%04d-%02d-%02d %02d:%02d:%02d by %s: %s", time.GetYear(), time.GetMonth(), time.GetDay(),
                time.GetHour(), time.GetMinute(), time.GetSecond(), static_cast<const char*>(record.GetOperator()),
                static_cast<const char*>(record.GetComment()));
    return std::string(text);
}

}  // namespace titration
