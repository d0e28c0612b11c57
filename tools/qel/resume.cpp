#include "resume.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "file_list.h"

namespace tool {
namespace {

constexpr std::string_view kFirst = "qel-resume 2 ";
constexpr std::size_t kMac = 64;

std::int64_t Nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

// What an inode is. Nothing for one that changed so lately that a further change may have the same time.
std::optional<std::string> InodeText(const std::string& path) {
    constexpr std::int64_t kTick = 20'000'000;  // ns; the system's clock for files moves by at most 10 ms
    timespec now = {};
    struct stat status = {};
    if (::clock_gettime(CLOCK_REALTIME, &now) != 0 || ::lstat(path.c_str(), &status) != 0) return std::nullopt;
    const std::int64_t changed = Nanoseconds(status.st_ctim);
    if (!S_ISREG(status.st_mode) || Nanoseconds(now) - changed < kTick) return std::nullopt;
    std::ostringstream text;
    text << status.st_dev << ' ' << status.st_ino << ' ' << status.st_size << ' ' << Nanoseconds(status.st_mtim) << ' '
         << changed;
    return text.str();
}

std::string Whole(const std::string& path) { return std::filesystem::absolute(path).lexically_normal().string(); }

std::string KeyOf(const std::string& purpose, const std::string& path) { return purpose + ' ' + path; }

Failure Refused(const std::string& path, const std::string& why) { return Failure(Shown(path) + ": " + why); }

}  // namespace

Resume::Resume(const std::string& path) : m_path(path) {
    m_file.Reset(::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat status = {};
    if (!m_file || ::fstat(m_file.Get(), &status) != 0) throw Refused(path, std::strerror(errno));
    constexpr mode_t kOthers = 077;
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid() || (status.st_mode & kOthers) != 0)
        throw Refused(path, "has to be a file of your own that nobody else may read or write (mode 0600)");
    if (status.st_size > 0) {
        Read();
        return;
    }
    const auto random = [] { return std::string(CGuid::CreateNewGuid().GetString()); };
    m_key = qel::HashText(random() + random() + random());
    m_hasFailed = !Append(std::string(kFirst) + m_key);
}

void Resume::Read() {
    std::ifstream stream(m_path, std::ios::binary);
    std::array<char, 65536> text;
    if (!stream.getline(text.data(), text.size()) || !std::string_view(text.data()).starts_with(kFirst) ||
        std::string_view(text.data()).size() != kFirst.size() + kMac)
        throw Failure(Shown(m_path) + ": was not made by --resume", kMalformed);
    m_key = text.data() + kFirst.size();
    while (stream.getline(text.data(), text.size())) Learn(text.data());
    m_hasFailed = !Append("");  // ends a line that was torn
}

std::string Resume::MacOf(const std::string& text) const { return qel::HashText(m_key + qel::HashText(m_key + text)); }

void Resume::Learn(const std::string& line) {
    if (line.size() <= kMac || MacOf(line.substr(kMac + 1)) != line.substr(0, kMac)) return;
    std::istringstream fields(line.substr(kMac + 1));
    std::string purpose, inode, field, path, detail;
    fields >> purpose;
    for (int i = 0; i < 5 && fields >> field; ++i) inode += (i > 0 ? " " : "") + field;
    int finding = 0;
    FileReport report;
    fields >> finding >> report.isSealed >> report.kind >> path >> detail;
    report.finding = finding == kUnknown ? kUnknown : kGood;
    report.detail = UnescapedPath(detail);
    m_known[KeyOf(purpose, UnescapedPath(path))] = {inode, report};
}

// After half a line the next one would be half a line as well.
bool Resume::Append(const std::string& text) {
    const std::lock_guard lock(m_turn);
    const std::string line = (m_isTorn ? "\n" : "") + text + '\n';
    m_isTorn = ::write(m_file.Get(), line.data(), line.size()) != static_cast<ssize_t>(line.size());
    return !m_isTorn;
}

std::size_t Resume::Passed() const {
    const std::lock_guard lock(m_turn);
    return m_passed.size();
}

// Trails are checked each time: what is known from elsewhere may be another thing.
FileReport Resume::Check(const std::string& file, const std::string& purpose, const Checking& check) {
    const std::optional<std::string> before = InodeText(file);
    const std::string path = Whole(file);
    const auto known = m_known.find(KeyOf(purpose, path));
    if (before && known != m_known.end() && known->second.inode == *before) {
        const std::lock_guard lock(m_turn);
        m_passed.insert(path);
        return known->second.report;
    }
    const FileReport report = check(file);
    const bool isGood = (report.finding == kGood || report.finding == kUnknown) && report.kind != "trail";
    if (!isGood || !before || InodeText(file) != before) return report;
    const std::string text = purpose + ' ' + *before + ' ' + std::to_string(report.finding) +
                             (report.isSealed ? " 1 " : " 0 ") + report.kind + ' ' + EscapedPath(path) + ' ' +
                             EscapedPath(report.detail);
    if (!Append(MacOf(text) + ' ' + text)) m_hasFailed = true;
    return report;
}

}  // namespace tool
