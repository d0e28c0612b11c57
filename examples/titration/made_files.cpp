#include "made_files.h"

#include "check_sums.h"
#include "failure.h"
#include "file_step.h"

namespace titration {
namespace {

constexpr const char* kSums = "made.ini";
constexpr const char* kSection = "files";

struct Kind {
    const char* pattern;
    const char* what;
};

constexpr Kind kKinds[] = {
    {"users.db", "who may log on"},
    {"method.xml", "the method of the latest result, enciphered"},
    {"report.txt", "the latest result as text"},
    {"result.csv", "the latest result for spreadsheets"},
    {"variables.qel", "the values of the latest result, sealed"},
    {"results.hcf", "every version of variables.qel"},
    {"renewals.qel", "who registered each version, when and why"},
    {"version-*.qel", "a version that was taken out"},
    {"curve.png", "the curve of the latest result"},
    {"report-*.job", "the report on a version as a print job"},
    {"page-*.png", "a preview of what was printed last"},
    {"*.pdf", "what was printed"},
    {kSums, "size and checksums of files above"},
    {"titration.log", "what was done, and what failed"},
};

DWORD SizeOf(const std::string& path) {
    DWORD size = 0;
    if (CQFile::GetFileSize(path.c_str(), &size) == 0) throw Failure(path + ": is missing");
    return size;
}

}  // namespace

MadeFiles::MadeFiles(const CString& folder) : m_folder(folder), m_sums(CQFile::BuildFilePath(folder, kSums)) {}

std::string MadeFiles::Path(const std::string& name) const {
    return std::string(CQFile::BuildFilePath(m_folder, name.c_str()));
}

std::string MadeFiles::Described(const std::string& name) const {
    return std::to_string(SizeOf(Path(name))) + " bytes, " + Shown(CheckSumsOf(Path(name)));
}

void MadeFiles::Add(const std::string& name) {
    if (m_sums.Set(kSection, name.c_str(), Described(name).c_str()) == 0)
        throw Failure(Path(kSums) + ": cannot be written");
}

std::vector<std::string> MadeFiles::AddNew(const std::string& pattern) {
    std::vector<std::string> names = Matching(pattern);
    std::erase_if(names, [&](const std::string& name) { return !m_sums.Get(kSection, name.c_str(), "").IsEmpty(); });
    for (const std::string& name : names) Add(name);
    return names;
}

void MadeFiles::RequireAsMade(const std::string& name) const {
    const std::string now = Described(name), made(m_sums.Get(kSection, name.c_str(), ""));
    if (made.empty()) throw Failure("has no line in " + std::string(kSums));
    if (now != made) throw Failure("has " + now + ", and had " + made);
}

std::vector<std::string> MadeFiles::Matching(const std::string& pattern) const {
    return OnFile(pattern, [&] {
        std::vector<std::string> names;
        for (const qel::FoundFile& found : qel::FindFiles(CQFile::BuildFilePath(m_folder, pattern.c_str()).View())) {
            if (!found.isFolder) names.emplace_back(found.name);
        }
        return names;
    });
}

std::string MadeFiles::Listed() const {
    std::string text;
    for (const auto& [pattern, what] : kKinds) {
        for (const std::string& name : Matching(pattern)) {
            CString line;
            line.Format("%9u  %-22s %s\n", SizeOf(Path(name)), name.c_str(), what);
            text += std::string(line);
        }
    }
    return text;
}

}  // namespace titration
