#pragma once

#include <string>

#include "qellib10/platform/export.h"

namespace qel {

/// What kind of reason an operation had to fail.
enum class FailureKind {
    kNone,         ///< the last operation of this thread succeeded
    kFile,         ///< the system refused a file; Failure::systemError says why
    kArchive,      ///< an archive is damaged, ends too early or is used in the wrong direction
    kData,         ///< bytes, a text or a document in a wrong form
    kMemory,       ///< memory ran out, perhaps by the length that a file claims
    kArgument,     ///< an invalid argument: null, an impossible name, a number out of range
    kState,        ///< the object cannot do it now: nothing is open, it is locked already, it was opened for reading
    kMissing,      ///< what was asked for does not exist: a version, a node, a key, a printer
    kRegistry,     ///< the registry refused; Failure::systemError has the code
    kPrinter,      ///< the printing system refused
    kSyntax,       ///< a formula that does not follow the grammar
    kUnknownName,  ///< a formula with a name that is not a variable
    kZeroDivisor,  ///< a formula that divides by zero
    kTooLong,      ///< a formula with too many bytes
    kRefused       ///< no more is known
};

/// Why an operation failed.
struct Failure {
    FailureKind kind = FailureKind::kNone;
    /// The operation that the application called, such as "CCheckDatafile::PackUpdateData".
    const char* operation = "";
    /// What it was about: a file, a key, a node, a printer, the name in a formula; empty when nothing has a name. In
    /// the process's code page.
    std::string item;
    /// The reason in a few English words, for logs, such as "disk full".
    std::string text;
    /// The number that CFileException::m_lOsError and the registry's functions have; -1 when the reason is not the
    /// system's.
    long systemError = -1;
    /// The position in a formula, in bytes from 0, including blanks; -1 when the failure is in no formula.
    int position = -1;
};

/// Why the last operation of this thread failed; kNone when it succeeded. Ask at once: the next operation, of whatever
/// object, sets or clears it. An operation that calls others and fails gives its own name and the reason of the
/// innermost one that failed.
///
/// @code
/// CQFile file;
/// if (file.Open(R"(data\results.qel)", CFile::modeRead) == 0) CLog::LogOut(1, qel::LastFailure().text.c_str());
/// @endcode
///
/// It is set by operations that report a failure by 0, false, null or a default value, if that value has no other
/// meaning. One that throws does not change it: the exception has the reason. Nor does a question whose result may be
/// no, such as CQFile::IsExist.
/// @throws std::bad_alloc
QELLIB10_API Failure LastFailure();

}  // namespace qel
