#include "qellib10/platform/ini/ini_cache.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <iterator>
#include <list>
#include <mutex>
#include <optional>
#include <span>
#include <utility>

#include "qellib10/platform/error.h"
#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

using Nanoseconds = std::chrono::nanoseconds;

constexpr std::size_t kMaxFiles = 16;
constexpr std::size_t kMaxMemory = 8 << 20;

// File times advance with the system's timer tick, on old file systems by two seconds, and then have no fraction. Two
// changes within one step look like one: until the step has passed, equal times prove nothing.
constexpr Nanoseconds kFineStep = std::chrono::milliseconds(50);
constexpr Nanoseconds kCoarseStep = std::chrono::milliseconds(2100);

Nanoseconds ToDuration(const timespec& time) { return std::chrono::seconds(time.tv_sec) + Nanoseconds(time.tv_nsec); }

// The clock that file times come from.
Nanoseconds Now() {
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return ToDuration(now);
}

// Differs if a file has changed.
struct Stamp {
    dev_t device = 0;
    ino_t number = 0;
    off_t size = 0;
    Nanoseconds written{};
    Nanoseconds changed{};

    explicit Stamp(const struct stat& status)
        : device(status.st_dev),
          number(status.st_ino),
          size(status.st_size),
          written(ToDuration(status.st_mtim)),
          changed(ToDuration(status.st_ctim)) {}
    bool operator==(const Stamp&) const = default;

    bool IsSettledAt(Nanoseconds time) const {
        return changed + (changed % std::chrono::seconds(1) == Nanoseconds(0) ? kCoarseStep : kFineStep) < time;
    }
};

struct CachedFile {
    std::string path;
    Stamp stamp;
    bool settled;
    std::shared_ptr<const IniIndex> index;
};

// The most recently used files, the latest first.
class Cache {
public:
    static Cache& Instance() {
        static Cache& cache = *new Cache;
        return cache;
    }

    std::optional<CachedFile> Find(const std::string& path) {
        const std::lock_guard guard(m_lock);
        const auto file = Position(path);
        if (file == m_files.end()) return std::nullopt;
        m_files.splice(m_files.begin(), m_files, file);
        return *file;
    }

    void Keep(CachedFile file) {
        const std::lock_guard guard(m_lock);
        if (const auto old = Position(file.path); old != m_files.end()) Drop(old);
        m_memory += file.index->Cost();
        m_files.push_front(std::move(file));
        while (m_files.size() > kMaxFiles || m_memory > kMaxMemory) Drop(std::prev(m_files.end()));
    }

    void Forget(const std::string& path) {
        const std::lock_guard guard(m_lock);
        if (const auto file = Position(path); file != m_files.end()) Drop(file);
    }

private:
    using Iterator = std::list<CachedFile>::iterator;

    Iterator Position(const std::string& path) { return std::ranges::find(m_files, path, &CachedFile::path); }
    void Drop(Iterator file) {
        m_memory -= file->index->Cost();
        m_files.erase(file);
    }

    ForkSafeLock m_lock;
    std::list<CachedFile> m_files;
    std::size_t m_memory = 0;
};

// Created at load, so that no thread is creating it while another forks.
[[maybe_unused]] const Cache& theCacheIsMadeAtLoad = Cache::Instance();

void RequireReadable(const struct stat& status) {
    if (!S_ISREG(status.st_mode)) throw DataError("not an ordinary file");
    if (static_cast<std::size_t>(status.st_size) > IniIndex::kLargestFile) throw DataError("larger than 32 MiB");
}

// @param old the former state of the same file, if known
CachedFile Load(const std::string& path, const Descriptor& file, std::string_view name,
                const std::optional<CachedFile>& old) {
    struct stat status = {};
    const Nanoseconds before = Now();
    if (::fstat(file.Get(), &status) != 0) ThrowErrno(errno, name);
    RequireReadable(status);
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    bytes.resize(ReadFully(file, std::as_writable_bytes(std::span(bytes)), name));
    const Stamp stamp(status);
    const bool same = old && old->index->Matches(bytes);
    return CachedFile{path, stamp, stamp.IsSettledAt(before),
                      same ? old->index : std::make_shared<const IniIndex>(std::move(bytes))};
}

bool IsCurrent(const CachedFile& file) {
    struct stat status = {};
    return file.settled && file.index->IsOfCurrentPage() && ::stat(file.path.c_str(), &status) == 0 &&
           Stamp(status) == file.stamp;
}

}  // namespace

std::shared_ptr<const IniIndex> ReadIni(const std::string& posixPath, std::string_view name) {
    Cache& cache = Cache::Instance();
    const std::optional<CachedFile> known = cache.Find(posixPath);
    if (known && IsCurrent(*known)) return known->index;
    const Descriptor opened(
        Uninterrupted([&] { return ::open(posixPath.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
    const int error = errno;
    if (known) cache.Forget(posixPath);
    if (!opened && (error == ENOENT || error == ENOTDIR)) return nullptr;
    if (!opened) ThrowErrno(error, name, posixPath);
    CachedFile file = Load(posixPath, opened, name, known);
    std::shared_ptr<const IniIndex> index = file.index;
    cache.Keep(std::move(file));
    return index;
}

}  // namespace qel
