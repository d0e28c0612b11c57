#pragma once

#include <atomic>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

namespace qel {

/// Whether messages can be logged, and if not, why.
struct LogState {
    LONG code = 0;   ///< the system's, like CFileException::m_lOsError; also 0 while logging is off
    CString reason;  ///< in English, with the path; empty if messages can be logged

    explicit operator bool() const { return reason.IsEmpty(); }
};

/// Opens the log file in the same way as CLog::LogOut, and closes it; a missing file is created, existing bytes do not
/// change. LogOut drops messages without notice, after 10 seconds each, so a program should ask here once it has set
/// its log file. Others that are writing a line are waited for, at most a quarter of a second; then the file is
/// reported as open elsewhere.
/// @throws only std::bad_alloc, if there is no memory for the reason
QELLIB10_API LogState CanLog();

}  // namespace qel

/// The log of the process: one text file, lines with their time, dumps of byte blocks, and a threshold. Many threads
/// and programs may log to one file. The class exists so that their lines never mix: the file is opened for each
/// message while nobody else has it open, and is only appended to.
///
/// @code
/// CLog::SetLogLevel(2);
/// CLog::SetLogFile("C:\\data\\meter.log");
/// if (const qel::LogState log = qel::CanLog(); !log) return;  // log.reason is for the user; LogOut would be silent
/// CLog::LogOut(1, "titration started");
/// CLog::LogOut(3, "too detailed for level 2");
/// @endcode
///
///     [2012/01/03 09:05:07],message CR LF
///     48 65 6C 6C 6F  Hello CR LF              a dump: up to 16 bytes in hexadecimal, a blank, the bytes as they are
///
/// Times are local. Any thread may log and set.
///
/// Kept for programs that use it: a buffer of 1024 bytes for messages, and a named mutex by which its users take turns.
/// The log itself needs neither.
class QELLIB10_API CLog {
public:
    CLog() = default;
    virtual ~CLog();

    /// The file to log to; it is created if missing, its folder is not. Null and the empty text switch logging off, as
    /// it is at first.
    static void SetLogFile(const char* path);
    /// The highest level that is written; 0 at first.
    static void SetLogLevel(int level);

    /// Writes @p message, and @p size bytes at @p data unless @p data is null, if @p level is at most the threshold.
    /// The line, not the dump, also goes to the debugger's output. If the file cannot be opened, for whatever reason,
    /// it tries again until 10 seconds of the clock have passed, and then drops the message: see qel::CanLog. Without
    /// memory it is dropped at once.
    /// @throws CFileException if the file is open but writing fails; nothing of the message is in it then
    static void LogOut(int level, const char* message, const void* data = nullptr, int size = 0);

    /// The name of the mutex for the message buffer. The text is not copied: it must stay valid while it is in use.
    static void SetLockKeyword(const char* name);

    /// Tries to claim the message buffer for this process: it has succeeded if GetMessageBufferHandle is not null. Kept
    /// for programs that rely on it: it always takes 10 seconds and returns 0; only without a keyword does it return at
    /// once. Once it has found an existing mutex, that mutex exists until this process ends.
    static int LockMessageBuffer();
    /// Releases the claim, if any.
    static void UnlockMessageBuffer();
    static HANDLE GetMessageBufferHandle();
    static const std::atomic<HANDLE>& m_hMessageBuffer;  ///< `HANDLE h = CLog::m_hMessageBuffer;`

    /// 1024 bytes, zero at first, shared by all threads without a lock.
    static char* GetMessageBuffer();
    static int GetMessageBufferSize();

private:
    friend qel::LogState qel::CanLog();

    static CString LogFile();

    static constexpr int kMessageBufferSize = 1024;
    static CString& m_szLogFile;  // under its own lock
    static std::atomic<int> m_nLogLevel;
    static std::atomic<const char*> m_szLockKeyword;
    static std::atomic<HANDLE> m_hOwnMessageBuffer;
    static char m_szMessageBuffer[kMessageBufferSize];
};
