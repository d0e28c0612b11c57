#include "demo/result/renewals.h"

namespace titration {

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
