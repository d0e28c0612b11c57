#include "qellib10/platform/printing/pdf_printer.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/printing/document_name.h"
#include "qellib10/platform/shell/special_folder.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_failure.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/rename_new.h"
#include "qellib10/platform/storage/unfinished_file.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr int kMaxOfOneName = 100'000;

// The folder from the environment, else the user's documents; empty if there is no home folder.
std::string Folder() {
    const char* const chosen = std::getenv("QELLIB10_PDF_DIR");
    return chosen != nullptr && *chosen != '\0' ? chosen : PosixSpecialFolder(SpecialFolder::kPersonal);
}

// Gives the file its name. @return false if a file with this name exists
bool Name(UnfinishedFile& file, const std::string& target) {
    const int error = RenameNew(file.Path(), target);
    if (error == EEXIST) return false;
    if (error != 0) ThrowErrno(error, target, target);
    file.Finish();
    FlushFolderOf(target, target);
    return true;
}

class Sink : public DocumentSink {
public:
    bool Begin(const CString&) override {
        m_folder = Folder();
        if (m_folder.empty()) return Refuse(FailureKind::kMissing, "", "no folder for documents") != 0;
        std::error_code error;
        std::filesystem::create_directories(m_folder, error);
        if (!error && ::faccessat(AT_FDCWD, m_folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0) return true;
        return RefuseErrno(error ? error.value() : errno, ToLibraryPath(m_folder).View(), m_folder) != 0;
    }

    bool Take(const CString& name, std::span<const std::byte> bytes) override {
        return AsResult([&] {
                   // All documents are written under one name, so that the next one removes what killed ones have left.
                   UnfinishedFile file(m_folder + "/.qellib10", 0666, m_folder);
                   WriteFully(file.File(), bytes, m_folder);
                   FlushData(file.File(), m_folder);
                   if (!file.HasItsName()) ThrowErrno(EBUSY, m_folder);
                   const std::string stem = m_folder + "/" + FileNameOf(ToUtf8(name.View()));
                   for (int number = 1; number < kMaxOfOneName; ++number) {
                       const std::string suffix = number == 1 ? "" : " (" + std::to_string(number) + ")";
                       if (Name(file, stem + suffix + ".pdf")) return 1;
                   }
                   return Refuse(FailureKind::kFile, m_folder, "too many documents of one name");
               }) != 0;
    }

private:
    std::string m_folder;
};

}  // namespace

Printer PdfPrinter(const SIZE& custom) {
    Printer printer;
    printer.entry.name = printer.entry.driver = kPdfPrinterName;
    printer.entry.port = ToLibraryPath(Folder());
    printer.media = MediaOfForms();
    if (custom.cx > 0 && custom.cy > 0) printer.media.push_back({"custom", custom});
    return printer;
}

std::unique_ptr<DocumentSink> PdfPrinterSink() { return std::make_unique<Sink>(); }

}  // namespace qel
