#pragma once

#include <exception>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// A file operation failed. Thrown by value, caught by reference; CFile::Open fills one instead of throwing.
class QELLIB10_API CFileException : public std::exception {
public:
    enum Cause : int {
        none = 0,
        genericException = 1,
        fileNotFound = 2,
        badPath = 3,
        tooManyOpenFiles = 4,
        accessDenied = 5,
        invalidFile = 6,
        removeCurrentDir = 7,
        directoryFull = 8,
        badSeek = 9,
        hardIO = 10,
        sharingViolation = 11,
        lockViolation = 12,
        diskFull = 13,
        endOfFile = 14
    };

    /// @param osError the platform's error number, -1 if the failure did not come from the system
    explicit CFileException(int cause = none, LONG osError = -1, const CString& fileName = CString())
        : m_cause(cause), m_lOsError(osError), m_strFileName(fileName) {}
    ~CFileException() override;

    /// The cause in a few English words, for logs.
    const char* what() const noexcept override;

    int m_cause;
    LONG m_lOsError;
    CString m_strFileName;
};
