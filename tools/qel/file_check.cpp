#include "file_check.h"

#include "content_check.h"
#include "seal_check.h"

namespace tool {
namespace {

void CheckSealed(const CQFile& file, const CCheckDatafile& seal, FileReport& report) {
    report.isSealed = true;
    report.guid = seal.GetGUID().GetString();
    report.sealVersion = seal.GetVersion();
    report.detail = "version " + std::to_string(report.sealVersion) + " of " + report.guid;
    report.sealedAs = Utf8(seal.GetFilename().View());
    if (seal.GetFilename() == file.GetFileName()) return;
    report.finding = kRenamed;
    report.detail += ", sealed as " + Shown(report.sealedAs);
}

// @return the end of the content; findings are in the report
ULONGLONG CheckContent(CQFile& file, FileReport& report) {
    try {
        const ContentReport content = Guarded([&] { return ContentOf(file, report.kind); });
        report.detail = content.note;
        report.damaged = content.damaged;
        if (content.damaged.empty()) return content.end;
        report.finding = kChanged;
        return 0;
    } catch (const Failure& failure) {
        report.finding = failure.ExitStatus();
        report.detail = failure.what();
        return 0;
    }
}

// Checks what is after a complete content, except what TraceOfSeal checks.
void CheckRest(CQFile& file, ULONGLONG end, FileReport& report) {
    report.isSealed = BeginsSeal(file, end);
    report.finding = report.isSealed ? kCut : StatusOfRest(file, report.kind, end);
    const std::string rest = Count(file.GetLength() - end, "byte", "bytes");
    report.detail += report.isSealed ? ", and its seal is cut" : ", and " + rest + " after it";
}

// An intact seal guarantees what is before it. What looks like a seal at the end of a file that is complete without it
// belongs to the data: a cabinet may end with a version that is a sealed file.
void Check(CQFile& file, FileReport& report) {
    report.kind = KindOf(file);
    CCheckDatafile seal;
    seal.EnableCheckFilename(0);
    const Status trace = TraceOfSeal(file, report.kind != "cabinet");
    if (trace != kGood && seal.ReadPackData(&file) != 0) {
        // Anybody can seal what only begins like a cabinet.
        if (report.kind == "cabinet") CheckContent(file, report);
        if (report.finding == kGood) return CheckSealed(file, seal, report);
        report.isSealed = true;
        return;
    }
    const ULONGLONG end = CheckContent(file, report);
    if (end == file.GetLength()) return;
    if (trace == kGood) {
        if (report.finding == kGood) CheckRest(file, end, report);
        return;
    }
    report.isSealed = true;
    const std::string content = report.finding == kGood ? "" : "; " + report.detail;
    report.finding = trace;
    report.detail = (trace == kCut ? "its seal is cut" : "it does not match its seal") + content;
}

}  // namespace

FileReport CheckFile(const std::string& path) {
    FileReport report;
    try {
        Guarded([&] {
            CQFile file;
            Open(file, path, CFile::modeRead | CFile::shareDenyWrite);
            report.size = file.GetLength();
            Check(file, report);
        });
    } catch (const Failure& failure) {
        report.finding = failure.ExitStatus();
        report.detail = failure.what();
    }
    return report;
}

bool IsReport(const FileReport& report, const std::string& path) {
    const CString name(path.c_str());
    const auto ends = [&](const char* suffix) { return name.Right(4).CompareNoCase(suffix) == 0; };
    return report.kind == "job" || report.kind == "pdf" || ends(".pdf") || ends(".job");
}

bool HasTraceOfSeal(const std::string& path) {
    return OnFile(path, [&] {
        CQFile file;
        Open(file, path, CFile::modeRead | CFile::shareDenyNone);
        return TraceOfSeal(file, KindOf(file) != "cabinet") != kGood;
    });
}

void RequireUnsealed(const std::string& path) {
    if (!HasTraceOfSeal(path)) return;
    const FileReport report = CheckFile(path);
    if (report.finding == kUnreadable) throw Failure(Shown(path) + ": " + report.detail, kUnreadable);
    if (report.isSealed) throw Failure(Shown(path) + ": is sealed, a change would cut its seal off");
}

}  // namespace tool
