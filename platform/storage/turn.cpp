#include "qellib10/platform/storage/turn.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>

#include "qellib10/platform/storage/record_lock.h"

namespace qel {
namespace {

constexpr std::int64_t kPlaces = std::int64_t{1} << 48;  // so many that a line never reaches its end
constexpr std::chrono::milliseconds kLongestJoining(100);
constexpr std::chrono::milliseconds kStandstill(100);

}  // namespace

Turn::Turn(const std::string& posixFolder, int line)
    : m_folder(::open(posixFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (m_folder && !Join(line)) m_folder.Reset();
}

// One at a time takes the place after the last one.
bool Turn::Join(int line) {
    for (Backoff wait(kLongestJoining); ::flock(m_folder.Get(), LOCK_EX | LOCK_NB) != 0;) {
        if (errno != EWOULDBLOCK || !wait.Again()) return false;
    }
    m_place = m_start = line * kPlaces;
    while (const std::optional<std::int64_t> other = First(m_place, m_start + kPlaces)) m_place = *other + 1;
    struct flock mark = RecordLock(F_RDLCK, m_place, 1);
    const bool isIn = ::fcntl(m_folder.Get(), F_OFD_SETLK, &mark) == 0;
    ::flock(m_folder.Get(), LOCK_UN);
    return isIn;
}

// The place of whoever came first between these two places: the kernel keeps locks in the order of creation.
std::optional<std::int64_t> Turn::First(std::int64_t from, std::int64_t end) const {
    if (from == end) return std::nullopt;
    struct flock others = RecordLock(F_WRLCK, from, end - from);
    if (::fcntl(m_folder.Get(), F_OFD_GETLK, &others) != 0 || others.l_type == F_UNLCK) return std::nullopt;
    return others.l_start;
}

bool Turn::Await(Backoff& patience) const {
    if (!m_folder) return true;
    using Clock = std::chrono::steady_clock;
    auto since = Clock::now();
    for (auto first = First(m_start, m_place); first;) {
        if (Clock::now() - since >= kStandstill || !patience.Again()) return false;
        const auto next = First(m_start, m_place);
        if (next != first) since = Clock::now();
        first = next;
    }
    return true;
}

}  // namespace qel
