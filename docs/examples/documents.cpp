// A method is changed under a lock; what was changed is listed, and every state stays in a cabinet with who changed it.
#include <qellib10/qellib10.h>

#include <cstdio>

namespace {

constexpr const char* kMethod = "method.xml";

// Sets the end point's limit. What it was is added to the list of differences.
bool Change(const char* limit, CQDiffList& differences) {
    CCryptXMLDocument method;
    if (!method.LockFile(kMethod, 0, 1)) return false;
    if (method.GetXMLString().IsEmpty()) method.SetXMLString("<Method/>");
    CDiffItem item;
    CString before;
    method.GetNodeText("EndPoint/Limit", before);
    item.SetName("EndPoint/Limit");
    item.SetBefore(before);
    item.SetAfter(limit);
    differences.AddDiffItem(item);
    return method.SetNodeText("EndPoint/Limit", limit) && method.LockCommit();
}

// The method as it is now becomes the next version; its record follows those of the versions before.
bool Register(CHistoryCabinetFile& cabinet, CArchive& records, const char* who, const char* why) {
    CHistoryRenewInfo record;
    record.SetRenewDateTime(COleDateTime(2026, 3, 9, 14, 30, 0));
    record.SetFileName(kMethod);
    record.SetOperator(who);
    record.SetComment(why);
    record.Serialize(records);
    return cabinet.RegistNewVersion(kMethod) != 0;
}

}  // namespace

int main() {
    CHistoryCabinetFile cabinet;
    CQDiffList differences;
    CMemFile file;
    CArchive records(&file, CArchive::store);
    if (!cabinet.Create("method.hcf")) return 1;
    if (!Change("7.0", differences) || !Register(cabinet, records, "Mori", "new")) return 1;
    if (!Change("8.2", differences) || !Register(cabinet, records, "Sato", "phenolphthalein")) return 1;
    records.Close();

    CDiffItem item;
    for (int i = 0; differences.GetDiffItemIndex(i, &item); ++i)
        std::puts(item.GetName() + ": \"" + item.GetBefore() + "\" -> \"" + item.GetAfter() + "\"");

    file.SeekToBegin();
    CArchive reader(&file, CArchive::load);
    for (DWORD version = 1; version <= cabinet.GetLatestVersion(); ++version) {
        CHistoryRenewInfo record;
        record.Serialize(reader);
        CCryptXMLDocument old;
        CString limit;
        if (!cabinet.GetVersionFile(version, "old.xml") || !old.LoadXMLFile("old.xml", 0)) return 1;
        old.GetNodeText("EndPoint/Limit", limit);
        std::printf("version %u by %s (%s): %s\n", version, static_cast<const char*>(record.GetOperator()),
                    static_cast<const char*>(record.GetComment()), static_cast<const char*>(limit));
    }
    return 0;
}
