// A method is changed under a lock; what was changed is listed, and every state stays in a cabinet with who changed it.
#include <qellib10/qellib10.h>

#include <cstdio>
#include <string>

namespace {

constexpr const char* kMethod = "method.xml";

// Sets the end point's limit. The former one is added to the list of differences.
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

void Print(const CQDiffList& differences) {
    CDiffItem item;
    for (int i = 0; differences.GetDiffItemIndex(i, &item); ++i)
        std::puts(item.GetName() + ": \"" + item.GetBefore() + "\" -> \"" + item.GetAfter() + "\"");
}

bool Print(const CHistoryRenewInfo& record, DWORD version, const char* document) {
    CCryptXMLDocument old;
    CString limit;
    if (!old.LoadXMLFile(document, 0)) return false;
    old.GetNodeText("EndPoint/Limit", limit);
    std::puts(CString("version ") + std::to_string(version) + " by " + record.GetOperator() + " (" +
              record.GetComment() + "): " + limit);
    return true;
}

}  // namespace

int main() try {
    CQDiffList differences;
    qel::RenewalHistory history("method.hcf", "renewals.qel");
    if (!Change("7.0", differences)) return 1;
    history.Register(kMethod, "Mori", "new");
    if (!Change("8.2", differences)) return 1;
    history.Register(kMethod, "Sato", "phenolphthalein");

    Print(differences);
    for (DWORD version = 1; version <= history.Latest(); ++version) {
        history.TakeOut(version, "old.xml");
        if (!Print(history.Records()[version - 1], version, "old.xml")) return 1;
    }
    return 0;
} catch (const std::exception& error) {  // CFileException, qel::DataError
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
