#pragma once

#include <string>

#include <qellib10/qellib10.h>

#include "demo/support/failure.h"

namespace titration {

/// A new file in the folder for temporary files, deleted at the end of the scope.
class TemporaryFile {
public:
    TemporaryFile() : m_path(CQFile::GetTempFilePath("ttr")) {
        if (m_path.IsEmpty()) throw Failure("there is no space for a temporary file");
    }
    ~TemporaryFile() { CQFile::DeleteFiles(m_path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::string Path() const { return std::string(m_path); }

private:
    const CString m_path;
};

}  // namespace titration
