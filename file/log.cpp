#include "qellib10/file/log.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/shell/debug_output.h"
#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/sync/handle.h"
#include "qellib10/platform/sync/named_mutex.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/time.h"

#include "qellib10/file/log_file.h"
#include "qellib10/file/log_text.h"

namespace {

constexpr std::int64_t kPatience = 10;  // seconds by the clock
constexpr std::chrono::seconds kLongerThanPatience(kPatience + 2);
constexpr std::chrono::milliseconds kRetryInterval(50);
constexpr std::chrono::milliseconds kForLinesOfOthers(250);
constexpr std::size_t kDumpBlock = 65536;  // bytes dumped by one write

// Both are created at load, so that no thread is creating one while another forks.
qel::ForkSafeLock& theLogFileGuard = *new qel::ForkSafeLock;
// One thread of the process at a time may open the file and write. A fork waits for its end, so that a child does not
// have the file open, and is not created while a thread holds the C library's time zone lock.
qel::ForkSafeLock& theTurn = *new qel::ForkSafeLock;

std::int64_t Now() { return CTime::GetCurrentTime().GetTime(); }

// Waits for something that others have, until the patience that started at @p since ends.
class Wait {
public:
    explicit Wait(std::int64_t since) : m_nSince(since) {}

    bool UntilTurn() { return !IsOver() && m_turn.Again(); }
    bool UntilRetry() { return !IsOver() && m_retry.Again(); }

private:
    bool IsOver() const { return Now() - m_nSince >= kPatience; }

    std::int64_t m_nSince;
    qel::Backoff m_turn{kLongerThanPatience};
    qel::Backoff m_retry{kLongerThanPatience, kRetryInterval};
};

// One try to open the file while this thread has the turn. @return 0, or the reason; it has no turn then
LONG TryInTurn(qel::LogFile& file, const CString& path, std::unique_lock<qel::ForkSafeLock>& turn) {
    if (!turn.try_lock()) return qel::kSharingViolation;
    const LONG code = file.Open(path);
    if (code != 0) turn.unlock();
    return code;
}

// Between the tries the turn is released: others may take it, or fork.
// @return false, and no turn, when the patience that started at @p since has ended
bool OpenInTurn(qel::LogFile& file, const CString& path, std::unique_lock<qel::ForkSafeLock>& turn,
                std::int64_t since) {
    LONG code = TryInTurn(file, path, turn);
    for (Wait wait(since); code != 0; code = TryInTurn(file, path, turn)) {
        if (code == qel::kSharingViolation ? !wait.UntilTurn() : !wait.UntilRetry()) return false;
    }
    return true;
}

std::string LineOf(const CTime& time, const char* message) {
    const CString stamp = time.Format("[%Y/%m/%d %H:%M:%S],");
    const std::string_view text = message != nullptr ? message : "";
    std::string line;
    line.reserve(stamp.View().size() + text.size() + 2);
    return line.append(stamp.View()).append(text).append("\r\n");
}

std::string WhyNot(LONG code) {
    switch (code) {
        case qel::kFolderMissing:
            return "its folder is missing";
        case qel::kAccessDenied:
            return "it is not a file, or may not be written";
        case qel::kWriteProtected:
            return "its disk can only be read";
        case qel::kSharingViolation:
            return "it is open elsewhere, in this program or another one";
        default:
            return CFileException(qel::CauseOfCode(code)).what();
    }
}

void WriteDump(qel::LogFile& file, std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        const auto block = bytes.first(std::min(kDumpBlock, bytes.size()));
        file.Append(qel::LogDump(block));
        bytes = bytes.subspan(block.size());
    }
}

void Write(const CString& path, const char* message, std::span<const unsigned char> data) {
    if (path.IsEmpty()) return;
    const CTime now = CTime::GetCurrentTime();
    std::unique_lock turn(theTurn, std::defer_lock);
    qel::LogFile file;
    if (!OpenInTurn(file, path, turn, now.GetTime())) return;
    const std::string line = LineOf(now, message);
    file.Append(line);
    OutputDebugStringA(line.c_str());
    WriteDump(file, data);
    file.Close();
}

}  // namespace

CString& CLog::m_szLogFile = *new CString;  // never freed: objects destroyed after this file's statics may still log
std::atomic<int> CLog::m_nLogLevel = 0;
std::atomic<const char*> CLog::m_szLockKeyword = nullptr;
constinit std::atomic<HANDLE> CLog::m_hOwnMessageBuffer = nullptr;
constinit const std::atomic<HANDLE>& CLog::m_hMessageBuffer = CLog::m_hOwnMessageBuffer;
char CLog::m_szMessageBuffer[kMessageBufferSize] = {};

CLog::~CLog() = default;

void CLog::SetLogFile(const char* path) {
    const std::lock_guard lock(theLogFileGuard);
    m_szLogFile = path;
}

CString CLog::LogFile() {
    const std::lock_guard lock(theLogFileGuard);
    return m_szLogFile;
}

void CLog::SetLogLevel(int level) { m_nLogLevel = level; }

void CLog::LogOut(int level, const char* message, const void* data, int size) {
    if (level > m_nLogLevel) return;
    const auto count = data != nullptr && size > 0 ? static_cast<std::size_t>(size) : 0;
    try {
        Write(LogFile(), message, {static_cast<const unsigned char*>(data), count});
    } catch (const std::bad_alloc&) {  // the program that logs may have freed some by its next message
    }
}

qel::LogState qel::CanLog() {
    const CString path = CLog::LogFile();
    if (path.IsEmpty()) return {0, "logging is off: no log file is set"};
    std::unique_lock turn(theTurn, std::defer_lock);
    LogFile file;
    LONG code = TryInTurn(file, path, turn);
    for (Backoff wait(kForLinesOfOthers); code == kSharingViolation && wait.Again();) {
        code = TryInTurn(file, path, turn);
    }
    if (code == 0) return {};
    return {code, path + ": " + WhyNot(code).c_str() + " (code " + std::to_string(code).c_str() + ")"};
}

void CLog::SetLockKeyword(const char* name) { m_szLockKeyword = name; }

int CLog::LockMessageBuffer() {
    const char* const keyword = m_szLockKeyword;
    if (keyword == nullptr) return 0;
    const std::int64_t since = Now();
    // A handle to an existing mutex is never closed; once we have one, nothing can change any more.
    for (bool isKept = false; Now() - since < kPatience; qel::SleepFor(kRetryInterval)) {
        if (isKept) continue;
        const qel::OpenedObject mutex = qel::CreateNamedMutex(keyword);
        if (mutex.handle == nullptr) continue;
        if (mutex.existed) {
            isKept = true;
        } else {
            m_hOwnMessageBuffer = mutex.handle;
        }
    }
    return 0;
}

void CLog::UnlockMessageBuffer() {
    if (const HANDLE handle = m_hOwnMessageBuffer.exchange(nullptr)) qel::CloseHandle(handle);
}

HANDLE CLog::GetMessageBufferHandle() { return m_hOwnMessageBuffer; }
char* CLog::GetMessageBuffer() { return m_szMessageBuffer; }
int CLog::GetMessageBufferSize() { return kMessageBufferSize; }
