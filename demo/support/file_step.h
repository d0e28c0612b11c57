#pragma once

#include <chrono>
#include <string>
#include <thread>

#include <qellib10/qellib10.h>

#include "demo/support/failure.h"

namespace titration {

/// Returns what @p step returns. An error with the file becomes the one line that the user sees.
template <class Step> auto OnFile(const std::string& path, Step step) {
    try {
        return step();
    } catch (const CFileException& error) {
        throw Failure(path + ": " + error.what());
    } catch (const CArchiveException& error) {
        throw Failure(path + ": " + error.what());
    }
}

/// Why the library's last operation, which returned 0, failed; @p otherwise if it gave no reason.
inline std::string Why(const char* otherwise) { return qel::FailureSentence(qel::LastFailure(), otherwise); }

/// @throws CFileException
inline void Open(CFile& file, const std::string& path, UINT mode) {
    CFileException error;
    if (file.Open(path.c_str(), mode, &error) == 0) throw CFileException(error);
}

/// Others may continue writing. Another run has the log exclusively while it writes a line, so this waits up to a
/// second.
/// @throws CFileException
inline void OpenForReading(CFile& file, const std::string& path) {
    constexpr int kAttempts = 100;
    CFileException error;
    for (int attempt = 1; file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone, &error) == 0; ++attempt) {
        if (error.m_cause != CFileException::sharingViolation || attempt == kAttempts) throw CFileException(error);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

}  // namespace titration
