#include "content_check.h"

#include <algorithm>

#include "variables.h"

namespace tool {
namespace {

std::string BytesAt(CFile& file, ULONGLONG offset, UINT count) {
    std::string bytes(count, '\0');
    file.Seek(static_cast<LONGLONG>(offset), CFile::begin);
    bytes.resize(file.Read(bytes.data(), count));
    return bytes;
}

// Documents, jobs and renewal records are loaded as a whole, which takes several times their size.
constexpr ULONGLONG kLargest = 64 << 20;

void RequireLoadable(const CFile& file) {
    if (file.GetLength() > kLargest) throw Failure("larger than 64 MiB: too large to be loaded", kTooLarge);
}

// A zero, then whole blocks.
bool LooksEnciphered(const CFile& file, std::string_view head) {
    if (head.size() < 2 || head[0] != '\0') return false;
    const CString path = file.GetFilePath();
    if (path.Right(4).CompareNoCase(".xml") == 0) return true;
    CCryptXMLDocument document;
    return file.GetLength() % 8 == 1 && file.GetLength() <= kLargest && document.LoadXMLFile(path, 1) != 0;
}

// Whoever forges a cabinet may put millions of versions into it.
ContentReport CheckCabinet(const CFile& file) {
    constexpr std::size_t kMostNamed = 100;
    qel::CabinetReader cabinet = CabinetOf(file);
    ContentReport report;
    std::size_t count = 0;
    while (const std::optional<qel::CabinetVersion> version = cabinet.Next()) {
        if (cabinet.IsIntact(*version) || ++count > kMostNamed) continue;
        report.note += (count == 1 ? "" : ", ") + std::to_string(version->number);
        report.damaged.push_back({version->number, version->dataAt, version->size});
    }
    if (count > kMostNamed) report.note += " and " + std::to_string(count - kMostNamed) + " more";
    report.note = count > 0 ? "does not match its checksums: version " + report.note
                            : Count(cabinet.Header().versionCount, "version", "versions");
    report.end = cabinet.End();
    return report;
}

ContentReport CheckVariables(CFile& file) {
    const CCalcVariableList list = LoadVariables(file);
    return {file.GetPosition(), Count(list.GetVariableCount(), "variable", "variables")};
}

ContentReport CheckRenewals(CFile& file) {
    const qel::RenewalRecords records = RenewalsOf(file);
    return {records.end, Count(records.whole.size(), "record", "records")};
}

bool IsCutRenewal(CFile& file, ULONGLONG offset) {
    file.Seek(static_cast<LONGLONG>(offset), CFile::begin);
    return qel::ReadRenewalRecords(file).isCut;
}

ContentReport CheckJob(const CFile& file) {
    RequireLoadable(file);
    CQelPrintJobQueueData job;
    if (job.LoadJobFile(file.GetFilePath()) == 0)
        throw LastRefusal("its XML is not well-formed, or refers to an entity", kMalformed);
    return {file.GetLength(), Count(job.GetBlock().GetCommandCount(), "command", "commands")};
}

ContentReport CheckXml(const CFile& file) {
    RequireLoadable(file);
    CCryptXMLDocument document;
    if (file.GetLength() % 8 != 1) throw Failure("it ends within an enciphered block", kCut);
    if (document.LoadXMLFile(file.GetFilePath(), 1) == 0)
        throw LastRefusal("it does not decipher to well-formed XML", kMalformed);
    return {file.GetLength(), "an enciphered document"};
}

}  // namespace

std::string KindOf(CFile& file) {
    const std::string head = BytesAt(file, 0, 1024);
    const qel::CabinetFileKind kind = qel::KindOfCabinetFile(head);
    if (kind == qel::CabinetFileKind::kCabinet) return "cabinet";
    if (head.starts_with("{\"format\":1,\"trail\":\"")) return "trail";
    // Programs that show PDFs look for it in the first kilobyte.
    if (head.find("%PDF-") != std::string::npos) return "pdf";
    if (kind == qel::CabinetFileKind::kRenewals) return "renewals";
    if (qel::IsCalcArchive(head)) return "variables";
    if (head.find("<printjob") != std::string::npos) return "job";
    return LooksEnciphered(file, head) ? "xml" : "data";
}

qel::CabinetReader CabinetOf(const CFile& file) {
    try {
        return qel::CabinetReader(file);
    } catch (const qel::DataError& error) {
        throw Failure(error.what(), kBadHeader);
    }
}

qel::RenewalRecords RenewalsOf(CFile& file) {
    RequireLoadable(file);
    return qel::ReadRenewalRecords(file);
}

ContentReport ContentOf(CFile& file, const std::string& kind) {
    file.SeekToBegin();
    if (kind == "cabinet") return CheckCabinet(file);
    if (kind == "variables") return CheckVariables(file);
    if (kind == "renewals") return CheckRenewals(file);
    if (kind == "job") return CheckJob(file);
    if (kind == "xml") return CheckXml(file);
#ifdef QEL_WITH_TRAIL
    if (kind == "trail") return {file.GetLength(), "a trail"};  // a matter of what is known from elsewhere
#endif
    if (kind == "pdf") throw Failure("a PDF, and not sealed", kUnknown);
    throw Failure("of an unknown kind, and not sealed", kUnknown);
}

Status StatusOfRest(CFile& file, const std::string& kind, ULONGLONG end) {
    if (kind == "cabinet" && qel::MayBeCutVersion(BytesAt(file, end, 4))) return kGood;
    if (kind == "renewals" && IsCutRenewal(file, end)) return kCut;
    return kInconsistent;
}

}  // namespace tool
