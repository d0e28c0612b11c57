#include "verify_report.h"

#include <map>

namespace tool {
namespace {

std::string Line(const CheckedFile& file) {
    const FileReport& report = file.report;
    std::string line = Shown(file.path) + ": " + NameOf(report.finding);
    if (report.isSealed || (!report.kind.empty() && report.kind != "data"))
        line += std::string(report.isSealed ? ", sealed " : ", ") + report.kind;
    return line + ": " + report.detail + '\n';
}

std::map<Status, int> CountsOf(const std::vector<CheckedFile>& files) {
    std::map<Status, int> counts;
    for (const CheckedFile& file : files) ++counts[file.report.finding];
    return counts;
}

}  // namespace

void PrintVerified(const VerifyResults& results, const VerifyOutput& output) {
    const std::vector<CheckedFile>& files = results.files;
    Json json{{"files", Json::array()}, {"summary", {{"files", files.size()}}}};
    std::string text;
    for (const CheckedFile& file : files) {
        const FileReport& report = file.report;
        const bool isFinding = report.finding >= (output.strict ? kUnknown : kRenamed);
        if (!isFinding && !file.isNamed && !output.all) continue;
        text += Line(file);
        json["files"].push_back(FileJson(file));
    }
#ifdef QEL_WITH_TRAIL
    for (const VerifiedArchive& archive : results.archives) text += VerifiedText(archive.chains, archive.archive);
    json["archives"] = ArchivesJson(results.archives);
#endif
    const std::map<Status, int> counts = CountsOf(files);
    text += std::to_string(files.size()) + (files.size() == 1 ? " file" : " files");
    for (const auto& [finding, count] : counts) {
        text += (finding == counts.begin()->first ? ": " : ", ") + std::to_string(count) + ' ' + NameOf(finding);
        json["summary"][NameOf(finding)] = count;
    }
    if (results.passed > 0) text += ", " + std::to_string(results.passed) + " not read again";
    json["summary"]["notReadAgain"] = results.passed;
    output.json ? Print(json) : Print(text + '\n');
}

}  // namespace tool
