#include "demo/report/temporary_print.h"

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "demo/support/failure.h"
#include "demo/support/file_names.h"

namespace titration {
namespace {

constexpr const char* kFolderVariable = "QELLIB10_PDF_DIR";

// Sends what is printed meanwhile to a folder.
class PdfFolder {
public:
    explicit PdfFolder(const std::string& folder) {
        if (const char* const before = std::getenv(kFolderVariable)) m_before = before;
        ::setenv(kFolderVariable, folder.c_str(), 1);
    }
    ~PdfFolder() { m_before ? ::setenv(kFolderVariable, m_before->c_str(), 1) : ::unsetenv(kFolderVariable); }
    PdfFolder(const PdfFolder&) = delete;
    PdfFolder& operator=(const PdfFolder&) = delete;

private:
    std::optional<std::string> m_before;
};

}  // namespace

TemporaryPrint::Folder::Folder() : path(std::filesystem::temp_directory_path() / "ttrXXXXXX") {
    if (::mkdtemp(path.data()) == nullptr) throw Failure(path + ": cannot be made");
}

TemporaryPrint::Folder::~Folder() { CQFile::DelTree(qel::ToLibraryPath(path)); }

TemporaryPrint::TemporaryPrint(ReportPages& pages) {
    const PdfFolder here(m_folder.path);
    pages.Print();
}

std::string TemporaryPrint::Path() const {
    const CString folder = qel::ToLibraryPath(m_folder.path);
    const std::vector<qel::FoundFile> files = qel::FindFiles(CQFile::BuildFilePath(folder, kAllPdfs).View());
    if (files.empty()) throw Failure(m_folder.path + ": has nothing that was printed");
    return std::string(CQFile::BuildFilePath(folder, files[0].name));
}

}  // namespace titration
