#include "demo/attack/copied_archive.h"

#include <algorithm>
#include <cstdlib>

#include "demo/result/archive_trail.h"
#include "demo/support/failure.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"
#include "demo/support/text_file.h"

namespace titration {

namespace fs = std::filesystem;

CopiedArchive::CopiedArchive(const CString& archive) {
    std::error_code noFolder;
    std::string folder = fs::temp_directory_path(noFolder) / "ttaXXXXXX";
    if (::mkdtemp(folder.data()) == nullptr) throw Failure(folder + ": cannot be made");
    m_folder = folder;
    std::error_code error;
    fs::copy(qel::ToPosixPath(archive.View()), m_folder / "archive", fs::copy_options::recursive, error);
    const CString installation = archive + ".installation";
    if (!error)
        fs::copy(qel::ToPosixPath(installation.View()), m_folder / "archive.installation", fs::copy_options::recursive,
                 error);
    if (error) throw Failure(std::string(archive) + ": cannot be copied: " + error.message());
}

CopiedArchive::~CopiedArchive() {
    std::error_code error;
    fs::remove_all(m_folder, error);
}

std::string CopiedArchive::Read(const char* name) const { return ReadBytes(Path(name)); }
void CopiedArchive::Write(const char* name, const std::string& bytes) const { WriteTextFile(bytes, Path(name)); }

void CopiedArchive::Remove(const char* name) const {
    if (CQFile::DeleteFiles(Path(name).c_str()) == 0) throw Failure(Path(name) + ": " + Why("cannot be deleted"));
}

void CopiedArchive::Change(const char* name, const std::string& from, const std::string& to) const {
    std::string bytes = Read(name);
    const std::size_t at = bytes.rfind(from);
    if (at == std::string::npos) throw Failure(std::string(name) + " has no \"" + from + "\"");
    Write(name, bytes.replace(at, from.size(), to));
}

std::vector<std::string> CopiedArchive::Lines() const {
    const std::string text = Read(kTrail);
    std::vector<std::string> lines;
    for (const std::string_view line : titration::Lines(text)) lines.emplace_back(line);
    return lines;
}

void CopiedArchive::WriteLines(const std::vector<std::string>& lines) const {
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    Write(kTrail, text);
}

std::size_t CopiedArchive::LineWith(const std::string& text) const {
    const std::vector<std::string> lines = Lines();
    for (std::size_t i = lines.size(); i-- > 0;) {
        if (lines[i].find(text) != std::string::npos) return i;
    }
    throw Failure("the trail has no entry with " + text);
}

DWORD CopiedArchive::LatestSigned() const {
    constexpr std::string_view kBefore = "signed-", kAfter = ".pdf";
    int latest = 0;
    for (const qel::FoundFile& file : qel::FindFiles(CQFile::BuildFilePath(Folder(), "signed-*.pdf").View())) {
        const std::string name(file.name);
        const std::string number = name.substr(kBefore.size(), name.size() - kBefore.size() - kAfter.size());
        latest = std::max(latest, ParseWholeNumber(number).value_or(0));
    }
    return static_cast<DWORD>(latest);
}

std::string CopiedArchive::SignedReport() const { return LatestSigned() == 0 ? "" : SignedName(LatestSigned()); }
std::string CopiedArchive::SignedJob() const { return JobName(LatestSigned()); }
std::string CopiedArchive::SignedTrace() const { return TraceName(LatestSigned()); }

}  // namespace titration
