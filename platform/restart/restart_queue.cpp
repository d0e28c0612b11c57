#include "qellib10/platform/restart/restart_queue.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "qellib10/platform/restart/restart_record.h"
#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/locked_file.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/windows_folder.h"

namespace qel {
namespace {

constexpr auto kLockLimit = std::chrono::seconds(10);
constexpr auto kLongestSleep = std::chrono::milliseconds(20);
constexpr std::uint64_t kLongestQueue = 64 << 20;  // we never write a longer one

std::span<const std::byte> Bytes(std::string_view text) { return std::as_bytes(std::span(text)); }

std::uint64_t Length(const Descriptor& file, std::string_view name) {
    struct stat status = {};
    if (::fstat(file.Get(), &status) != 0) ThrowErrno(errno, name);
    const auto length = static_cast<std::uint64_t>(status.st_size);
    if (length > kLongestQueue) ThrowCode(kGeneralFailure, name);
    return length;
}

std::string Content(const Descriptor& file, std::string_view name) {
    std::string text(Length(file, name), '\0');
    text.resize(ReadFullyAt(file, std::as_writable_bytes(std::span(text)), 0, name));
    return text;
}

// The queue's file, locked; no descriptor if it does not exist and @p flags do not create it.
Descriptor OpenQueue(const std::string& path, int flags) {
    Backoff wait(kLockLimit, kLongestSleep);
    return OpenLocked(path, O_NOFOLLOW | flags, path, wait);
}

// Each start of the system has its own id; "-" if it cannot be read.
std::string BootId() {
    const Descriptor file(::open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC));
    if (!file) return "-";
    char id[64];
    std::string text(id, ReadFully(file, std::as_writable_bytes(std::span(id)), "boot_id"));
    text.erase(std::ranges::find_if(text, [](char c) { return c == '\n' || c == ' '; }), text.end());
    return text.empty() ? "-" : text;
}

void MakeFolders(const std::string& folder) {
    for (std::size_t at = folder.find('/', 1); at != std::string_view::npos; at = folder.find('/', at + 1)) {
        ::mkdir(folder.substr(0, at).c_str(), 0777);
    }
    ::mkdir(folder.c_str(), 0777);  // a failure shows when the queue is opened
}

// A record and the position of its line in the file.
struct PlacedRecord {
    RestartRecord record;
    std::size_t offset;
};

std::vector<PlacedRecord> Records(std::string_view text) {
    std::vector<PlacedRecord> records;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) break;  // incomplete
        if (auto record = RestartRecord::Parse(text.substr(at, end - at))) records.push_back({*record, at});
        at = end + 1;
    }
    return records;
}

// @return 0 or the errno
int CarryOut(const RestartOperation& operation) {
    const std::string& source = operation.source;
    const bool moves = !operation.target.empty();
    if ((moves ? ::rename(source.c_str(), operation.target.c_str()) : ::unlink(source.c_str())) != 0) {
        const int error = errno;
        struct stat left = {};
        const bool gone = error == ENOENT && ::lstat(source.c_str(), &left) != 0 && errno == ENOENT;
        return gone ? 0 : error;  // done before a run was interrupted
    }
    FlushFolderOf(source, source);
    if (moves) FlushFolderOf(operation.target, operation.target);
    return 0;
}

void WriteNew(const std::vector<RestartRecord>& records, const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!file) ThrowErrno(errno, path, path);
    for (const RestartRecord& record : records) WriteFully(file, Bytes(record.Line()), path);
    FlushData(file, path);
}

// Replaces the queue by a file with the records of @p kept, or removes it if there are none. The lock on the old file
// is held meanwhile; whoever waits for it finds that the file is gone.
void ReplaceBy(const std::vector<RestartRecord>& kept, const std::string& path) {
    if (kept.empty()) {
        if (::unlink(path.c_str()) != 0) ThrowErrno(errno, path, path);
        return FlushFolderOf(path, path);
    }
    const std::string temporary = path + ".tmp";
    try {
        WriteNew(kept, temporary);
        if (::rename(temporary.c_str(), path.c_str()) != 0) ThrowErrno(errno, path, path);
    } catch (const CFileException&) {
        ::unlink(temporary.c_str());
        throw;
    }
    FlushFolderOf(path, path);
}

std::string StateFolder() {
    if (::geteuid() == 0 || std::getenv("QELLIB10_STATE_DIR") != nullptr) return ToPosixPath(WindowsFolder().View());
    if (const char* state = std::getenv("XDG_STATE_HOME"); state != nullptr && state[0] == '/') {
        return std::string(state) + "/qellib10";
    }
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') ThrowCode(kFolderMissing, "~/.local/state/qellib10");
    return std::string(home) + "/.local/state/qellib10";
}

std::string AbsolutePosixPath(std::string_view path) { return ToPosixPath(FullPath(path).View()); }

}  // namespace

RestartQueue RestartQueue::OfUser() { return RestartQueue(StateFolder() + "/pending-moves"); }

RestartQueue::RestartQueue(std::string posixPath) : m_path(std::move(posixPath)) {}

void RestartQueue::Add(const RestartOperation& operation) {
    MakeFolders(PosixFolderOf(m_path));
    const Descriptor file = OpenQueue(m_path, O_CREAT);
    const std::uint64_t end = Length(file, m_path);
    char last = '\n';
    if (end > 0) ReadFullyAt(file, std::as_writable_bytes(std::span(&last, 1)), end - 1, m_path);
    const std::string line = RestartRecord{false, BootId(), operation}.Line();
    // A line that was cut off by a crash is closed, so that it does not spoil the next one.
    WriteFullyAt(file, Bytes(last == '\n' ? line : '\n' + line), end, m_path);
    FlushData(file, m_path);
    if (end == 0) FlushFolderOf(m_path, m_path);
}

void RestartQueue::Run(const std::function<void(const RestartOperation&, int)>& report) {
    const Descriptor file = OpenQueue(m_path, 0);
    if (!file) return;
    const std::string bootId = BootId();
    std::vector<RestartRecord> kept;
    for (const auto& [record, offset] : Records(Content(file, m_path))) {
        if (record.done) continue;
        if (record.bootId == bootId && bootId != "-") {
            kept.push_back(record);
            continue;
        }
        if (const int error = CarryOut(record.operation)) report(record.operation, error);
        WriteFullyAt(file, Bytes({&RestartRecord::kDone, 1}), offset, m_path);
        FlushData(file, m_path);
    }
    ReplaceBy(kept, m_path);
}

std::vector<RestartOperation> RestartQueue::Waiting() const {
    const Descriptor file(::open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno == ENOENT) return {};
    if (!file) ThrowErrno(errno, m_path, m_path);
    std::vector<RestartOperation> waiting;
    for (const PlacedRecord& placed : Records(Content(file, m_path))) {
        if (!placed.record.done) waiting.push_back(placed.record.operation);
    }
    return waiting;
}

void MoveFileDelayed(std::string_view source, std::string_view target) {
    RestartQueue::OfUser().Add({AbsolutePosixPath(source), AbsolutePosixPath(target)});
}

void DeleteFileDelayed(std::string_view name) { RestartQueue::OfUser().Add({AbsolutePosixPath(name), ""}); }

}  // namespace qel
