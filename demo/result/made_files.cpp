#include "demo/result/made_files.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "demo/result/check_sums.h"
#include "demo/support/failure.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"
#include "demo/support/text_file.h"

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
    {"trace-*.json", "how a version was computed, step by step"},
    {"trace-*.job", "the same as print jobs"},
    {"version-*/variables.qel", "a version that was taken out"},
    {"version-*.qel", "the same, as earlier releases named it"},
    {"curve.png", "the curve of the latest result"},
    {"report-*.job", "the report on a version as a print job"},
    {"signatures-*.job", "who has signed a version, as a print job"},
    {"versions.csv", "all versions for spreadsheets"},
    {"trail.jsonl", "who did what, when and why"},
    {kAllPages, "a preview of what was printed last"},
    {kAllPdfs, "what was printed"},
    {kSums, "sizes and checksums of the others"},
    {"titration.log", "what was done, and what failed"},
};

bool Take(std::string_view& rest, std::string_view text) {
    if (!rest.starts_with(text)) return false;
    rest.remove_prefix(text.size());
    return true;
}

bool TakeDigits(std::string_view& rest, std::string_view digits, std::size_t least, std::size_t most) {
    const std::size_t count = std::min(rest.find_first_not_of(digits), rest.size());
    rest.remove_prefix(count);
    return count >= least && count <= most;
}

bool TakeSum(std::string_view& rest) { return TakeDigits(rest, "0123456789ABCDEF", 8, 8); }

bool IsFile(std::string_view rest) {
    return TakeDigits(rest, "0123456789", 1, 10) && Take(rest, " bytes, CRC ") && TakeSum(rest) &&
           Take(rest, ", sum ") && TakeSum(rest) && rest.empty();
}

bool IsFingerprint(std::string_view rest) {
    do {
        if (!TakeSum(rest) || !Take(rest, " ")) return false;
        if (rest == "no PDF") return true;
    } while (rest.find(' ') != std::string_view::npos);
    return TakeSum(rest) && rest.empty();
}

// As a whole: if a sum was cut, or has more after it, nothing can be trusted.
bool IsLine(std::string_view line, bool isFile) {
    const std::size_t equals = line.find('=');
    if (equals == 0 || equals == std::string_view::npos) return false;
    const std::string_view value = line.substr(equals + 1);
    return isFile ? IsFile(value) : IsFingerprint(value);
}

std::vector<std::string> EntriesOf(const CString& folder, const std::string& pattern, bool isFolder) {
    std::vector<std::string> names;
    for (const qel::FoundFile& found : qel::FindFiles(CQFile::BuildFilePath(folder, pattern.c_str()).View())) {
        if (found.isFolder == isFolder) names.emplace_back(found.name);
    }
    return names;
}

}  // namespace

MadeFiles::MadeFiles(const CString& folder) : m_folder(folder), m_sums(CQFile::BuildFilePath(folder, kSums)) {}

std::string MadeFiles::Path(const std::string& name) const {
    const std::size_t slash = name.find('/');
    if (slash == std::string::npos) return std::string(CQFile::BuildFilePath(m_folder, name.c_str()));
    const CString folder = CQFile::BuildFilePath(m_folder, name.substr(0, slash).c_str());
    return std::string(CQFile::BuildFilePath(folder, name.substr(slash + 1).c_str()));
}

DWORD MadeFiles::SizeOf(const std::string& name) const {
    DWORD size = 0;
    if (CQFile::GetFileSize(Path(name).c_str(), &size) == 0) throw Failure(name + ": " + Why("is missing"));
    return size;
}

// Of its first bytes.
std::string MadeFiles::Described(const std::string& name, DWORD size) const {
    return OnFile(name, [&] {
        CQFile file;
        OpenForReading(file, Path(name));
        return std::to_string(size) + " bytes, " + Shown(size > 0 ? CheckSumsOf(file, size) : CheckSums());
    });
}

std::string MadeFiles::Described(const std::string& name) const { return Described(name, SizeOf(name)); }

std::string MadeFiles::AsMade(const std::string& name) const {
    const std::string made(m_sums.Get(kFiles, name.c_str(), ""));
    if (made.empty()) throw Failure("has no line in " + std::string(kSums));
    return made;
}

void MadeFiles::Set(const std::string& name, const char* sums, const char* fingerprint) {
    if (m_sums.Set(kFiles, name.c_str(), sums) == 0 || m_sums.Set(kFingerprints, name.c_str(), fingerprint) == 0)
        throw Failure(Path(kSums) + ": " + Why("cannot be written"));
}

void MadeFiles::Add(const std::string& name, const std::string& fingerprint) {
    Set(name, Described(name).c_str(), fingerprint.empty() ? nullptr : fingerprint.c_str());
}

// Changes that another run writes between our reading and our writing would be lost, so it is read again.
void MadeFiles::Keep(const std::string& name) {
    std::string kept;
    while (CQFile::IsExist(Path(name).c_str()) != 0) {
        const std::string now = Described(name);
        if (now == kept) return;
        Set(name, now.c_str(), nullptr);
        kept = now;
    }
}

void MadeFiles::Remove(const std::string& pattern) {
    const std::vector<std::string> names = Matching(pattern);
    if (CQFile::DeleteFiles(Path(pattern).c_str()) == 0) throw Failure(Path(pattern) + ": " + Why("cannot be deleted"));
    for (const std::string& name : names) Set(name, nullptr, nullptr);
}

void MadeFiles::RequireAsMade(const std::string& name) const {
    const std::string now = Described(name), made = AsMade(name);
    if (now != made) throw Failure("has " + now + ", and had " + made);
}

void MadeFiles::RequireBeginsAsMade(const std::string& name) const {
    const std::string made = AsMade(name);
    const auto before = static_cast<DWORD>(ParseWholeNumber(made.substr(0, made.find(' '))).value_or(0));
    const std::string now = Described(name, std::min(before, SizeOf(name)));
    if (now != made) throw Failure("starts with " + now + ", and had " + made);
}

std::vector<std::string> MadeFiles::Matching(const std::string& pattern) const {
    return OnFile(pattern, [&] {
        std::vector<std::string> names;
        const std::size_t slash = pattern.find('/');
        if (slash == std::string::npos) return EntriesOf(m_folder, pattern, false);
        for (const std::string& folder : EntriesOf(m_folder, pattern.substr(0, slash), true)) {
            for (const std::string& name : EntriesOf(Path(folder).c_str(), pattern.substr(slash + 1), false)) {
                names.push_back(folder + "/" + name);
            }
        }
        return names;
    });
}

std::vector<std::string> MadeFiles::WrittenDown() const {
    const std::string text = ReadBytes(Path(kSums));
    if (!text.ends_with("\r\n")) throw Failure("its last line is cut");
    const std::string files = "[" + std::string(kFiles) + "]", fingerprints = "[" + std::string(kFingerprints) + "]";
    std::vector<std::string> names;
    std::set<std::string, std::less<>> lines;  // with the section before the name
    std::string_view section;
    int number = 0;
    for (const std::string_view line : Lines(text)) {
        const std::string here = "line " + std::to_string(++number) + ", \"" + std::string(line) + "\": ";
        const bool isSection = line == files || line == fingerprints;
        const std::string_view name = line.substr(0, line.find('='));
        if (!lines.insert(isSection ? std::string(line) : std::string(section) + std::string(name)).second)
            throw Failure(here + "occurs twice");
        if (isSection) {
            section = line;
        } else if (section.empty() || !IsLine(line, section == files)) {
            throw Failure(here + "is not valid here");
        } else if (section == files) {
            names.emplace_back(name);
        } else if (!lines.contains(files + std::string(name))) {
            throw Failure(here + "names no file above");
        }
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
            line.Format("%9u  %-24s %s\n", SizeOf(name), name.c_str(), what);
            text += std::string(line);
        }
    }
    return text;
}

}  // namespace titration
