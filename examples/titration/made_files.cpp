#include "made_files.h"

#include "check_sums.h"
#include "failure.h"
#include "file_names.h"
#include "file_step.h"
#include "text_file.h"

namespace titration {
namespace {

constexpr const char* kSums = "made.ini";

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
    {"method-*.xml", "the method of a version, enciphered"},
    {"curve-*.csv", "the measured curve of a version"},
    {"version-*.qel", "a version that was taken out"},
    {"curve.png", "the curve of the latest result"},
    {"report-*.job", "the report on a version as a print job"},
    {kAllPages, "a preview of what was printed last"},
    {kAllPdfs, "what was printed"},
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
    const DWORD size = SizeOf(Path(name));
    return std::to_string(size) + " bytes, " + Shown(CheckSumsOf(Path(name)));
}

void MadeFiles::Set(const std::string& name, const char* sums, const char* sample) {
    if (m_sums.Set(kFiles, name.c_str(), sums) == 0 || m_sums.Set(kSamples, name.c_str(), sample) == 0)
        throw Failure(Path(kSums) + ": cannot be written");
}

void MadeFiles::Add(const std::string& name, const std::string& sample) {
    Set(name, Described(name).c_str(), sample.empty() ? nullptr : sample.c_str());
}

void MadeFiles::Remove(const std::string& pattern) {
    const std::vector<std::string> names = Matching(pattern);
    if (CQFile::DeleteFiles(Path(pattern).c_str()) == 0) throw Failure(Path(pattern) + ": cannot be deleted");
    for (const std::string& name : names) Set(name, nullptr, nullptr);
}

void MadeFiles::RequireAsMade(const std::string& name) const {
    const std::string now = Described(name), made(m_sums.Get(kFiles, name.c_str(), ""));
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

std::vector<std::string> MadeFiles::WrittenDown() const {
    const std::string text = ReadTextFile(Path(kSums));
    std::vector<std::string> names;
    bool isFile = false;
    for (const std::string_view line : Lines(text)) {
        if (line.starts_with('[')) isFile = line == "[" + std::string(kFiles) + "]";
        const std::size_t end = line.find('=');
        if (isFile && end != std::string_view::npos) names.emplace_back(Trimmed(line.substr(0, end)));
    }
    return names;
}

std::vector<std::string> MadeFiles::Found() const {
    std::vector<std::string> names;
    for (const Kind& kind : kKinds) {
        const std::vector<std::string> more = Matching(kind.pattern);
        names.insert(names.end(), more.begin(), more.end());
    }
    return names;
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
