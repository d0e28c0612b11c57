#pragma once

#include <exception>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// An archive is damaged, ends too early, or is used in the wrong direction. Thrown by value, caught by reference.
class QELLIB10_API CArchiveException : public std::exception {
public:
    enum Cause : int {
        none = 0,
        genericException = 1,
        readOnly = 2,   ///< storing into an archive that loads
        endOfFile = 3,  ///< the bytes end before the value does
        writeOnly = 4,  ///< loading from an archive that stores
        badIndex = 5,   ///< an object or class number that was not assigned, or to something else
        badClass = 6,   ///< a class that is unknown, not the wanted one, or cannot be created
        badSchema = 7,  ///< the class exists in another version
        bufferFull = 8
    };

    explicit CArchiveException(int cause = none, const CString& fileName = CString())
        : m_cause(cause), m_strFileName(fileName) {}
    ~CArchiveException() override;

    /// The cause in a few English words, for logs.
    const char* what() const noexcept override;

    int m_cause;
    CString m_strFileName;  // path of the archive's file; empty for a memory file
};
