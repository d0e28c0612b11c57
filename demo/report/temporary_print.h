#pragma once

#include <string>

#include "demo/report/report_page.h"

namespace titration {

inline constexpr const char* kPdfPrinter = "PDF";

/// Reports as the printer "PDF" prints them, in a separate folder that is deleted at the end of the scope.
class TemporaryPrint {
public:
    /// @param pages for that printer
    /// @throws Failure
    explicit TemporaryPrint(ReportPages& pages);

    /// The file.
    std::string Path() const;

private:
    struct Folder {
        Folder();
        ~Folder();
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;

        std::string path;  // in the system's form
    };

    const Folder m_folder;
};

}  // namespace titration
