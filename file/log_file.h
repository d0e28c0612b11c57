#pragma once

#include <cstdint>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

namespace qel {

/// The log file while one message is written, open for appending and exclusively: for CFile it is open with modeWrite
/// and shareExclusive. A line costs no more system calls than opening a file exclusively. What was appended is removed
/// again unless Close is called.
class LogFile {
public:
    LogFile() = default;
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// Opens the file at @p path, once; creates it if it is missing.
    /// @return 0, or the reason, like CFileException::m_lOsError: 32 while another opening does not allow it
    LONG Open(const CString& path);

    /// @throws CFileException, like Close
    void Append(std::string_view text);
    void Close();

private:
    Descriptor m_file;
    CString m_path;
    std::uint64_t m_appended = 0;  // bytes
};

}  // namespace qel
