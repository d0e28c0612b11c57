#include "qellib10/platform/storage/path.h"

#include <linux/limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <vector>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::string_view kSeparators = "\\/";

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool StartsWithDrive(std::string_view path) { return path.size() >= 2 && IsLetter(path[0]) && path[1] == ':'; }
char UpperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// An absolute folder from the environment, without separators at its end, or @p fallback.
std::string Folder(const std::string& variable, std::string_view fallback) {
    const char* value = std::getenv(variable.c_str());
    std::string folder(value != nullptr && value[0] == '/' ? std::string_view(value) : fallback);
    while (!folder.empty() && folder.back() == '/') folder.pop_back();
    return folder;
}

std::string DriveVariable(char letter) { return std::string("QELLIB10_DRIVE_") + UpperCase(letter); }
std::string NetRoot() { return Folder("QELLIB10_NET_ROOT", "/net"); }

// A path taken apart: its start, and the names from there. The names point into the original text.
struct ParsedPath {
    enum class Start { Here, Root, Drive, Net };

    Start start = Start::Here;
    std::string_view prefix;              // the drive as written, for example "C:"
    std::vector<std::string_view> names;  // of a network path the first two are server and share

    std::size_t Fixed() const { return start == Start::Net ? 2 : 0; }  // names that belong to the root
    void Add(std::string_view name);
    void AddAll(std::string_view path);
    std::string Posix() const;
    std::string Library() const;
};

void ParsedPath::Add(std::string_view name) {
    if (name.empty() || name == ".") return;
    if (name == ".." && names.size() > Fixed() && names.back() != "..") {
        names.pop_back();
    } else if (name != ".." || start == Start::Here) {
        names.push_back(name);
    }
}

void ParsedPath::AddAll(std::string_view path) {
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = FindSeparator(path, at);
        Add(path.substr(at, end - at));
        at = end + 1;
    }
}

std::string ParsedPath::Posix() const {
    std::string posix;
    if (start == Start::Drive) posix = Folder(DriveVariable(prefix[0]), "/");
    if (start == Start::Net) posix = NetRoot();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0 || start != Start::Here) posix += '/';
        posix += ToPosixName(names[i]);
    }
    if (posix.empty()) posix.assign(1, start == Start::Here ? '.' : '/');
    return posix;
}

std::string ParsedPath::Library() const {
    std::string path(prefix);
    if (start == Start::Net) path.assign(1, '\\');
    if (names.empty() && start != Start::Here) path.append(1, '\\');
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0 || start != Start::Here) path += '\\';
        path += names[i];
    }
    return path;
}

ParsedPath ParseNet(std::string_view path) {
    ParsedPath parsed;
    parsed.start = ParsedPath::Start::Net;
    std::size_t at = 2;
    for (int part = 0; part < 2; ++part) {
        const std::size_t end = at <= path.size() ? FindSeparator(path, at) : at;
        const std::string_view name = at <= path.size() ? path.substr(at, end - at) : std::string_view();
        if (name.empty() || name == "." || name == "..") ThrowCode(kBadNetworkPath, path);
        parsed.names.push_back(name);
        at = end + 1;
    }
    if (at < path.size()) parsed.AddAll(path.substr(at));
    return parsed;
}

ParsedPath Parse(std::string_view path) {
    if (path.empty()) ThrowCode(kFolderMissing, path);
    if (path.starts_with("\\\\")) return ParseNet(path);
    ParsedPath parsed;
    if (StartsWithDrive(path)) {
        parsed.start = ParsedPath::Start::Drive;
        parsed.prefix = path.substr(0, 2);
        path.remove_prefix(2);
    } else if (kSeparators.find(path[0]) != std::string_view::npos) {
        parsed.start = ParsedPath::Start::Root;
    }
    parsed.AddAll(path);
    return parsed;
}

bool Begins(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string LibraryNames(std::string_view posix) {
    std::string names;
    while (!posix.empty()) {
        const std::size_t end = std::min(posix.find('/'), posix.size());
        if (end > 0) names.append(1, '\\').append(ToLibraryName(posix.substr(0, end)).View());
        posix.remove_prefix(std::min(end + 1, posix.size()));
    }
    return names;
}

// The drive whose folder is the longest start of @p posix: its letter and the folder's length.
struct DriveMatch {
    char letter = 0;
    std::size_t length = 0;
};

DriveMatch DriveOf(std::string_view posix) {
    DriveMatch best;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        if (std::getenv(DriveVariable(letter).c_str()) == nullptr) continue;
        const std::string folder = Folder(DriveVariable(letter), "/");
        if (!Begins(posix, folder) || (best.letter != 0 && folder.size() <= best.length)) continue;
        best = {letter, folder.size()};
    }
    return best;
}

// The kernel's rule (protected_symlinks), because links are followed here by our own code: in a folder where everybody
// may create files, only links of the caller or of the folder's owner are followed.
void CheckMayFollow(const std::string& link, std::string_view name) {
    struct stat holding = {};
    struct stat own = {};
    const std::string folder = PosixFolderOf(link);
    if (::stat(folder.c_str(), &holding) != 0 || ::lstat(link.c_str(), &own) != 0) ThrowErrno(errno, name, link);
    constexpr mode_t kSharedFolder = S_ISVTX | S_IWOTH;
    const bool isShared = (holding.st_mode & kSharedFolder) == kSharedFolder;
    if (isShared && own.st_uid != ::geteuid() && own.st_uid != holding.st_uid) ThrowErrno(EACCES, name, link);
}

}  // namespace

std::string ToPosixPath(std::string_view path) {
    if (path.size() >= MAX_PATH) ThrowCode(kPathTooLong, path);
    return Parse(path).Posix();
}

CString ToLibraryPath(std::string_view posixPath) {
    if (!posixPath.starts_with('/')) {
        const std::string names = LibraryNames(posixPath);
        return CString(std::string_view(names).substr(names.empty() ? 0 : 1));
    }
    const std::string net = NetRoot();
    const DriveMatch drive = DriveOf(posixPath);
    if (Begins(posixPath, net) && net.size() >= drive.length) {
        const std::string names = LibraryNames(posixPath.substr(net.size()));
        if (FindCharacter(names, '\\', 1) != std::string_view::npos) return CString(std::string(1, '\\').append(names));
    }
    const std::string names = LibraryNames(posixPath.substr(drive.length));
    std::string path;
    if (drive.letter != 0) path.append(1, drive.letter).append(1, ':');
    return CString(path.append(names.empty() ? std::string(1, '\\') : names));
}

CString FullPath(std::string_view path) {
    if (path.size() >= MAX_PATH) ThrowCode(kPathTooLong, path);
    const ParsedPath parsed = Parse(path);
    if (parsed.start != ParsedPath::Start::Here) return CString(parsed.Library());
    const CString here = CurrentFolder();
    ParsedPath full = Parse(here.View());
    for (const std::string_view name : parsed.names) full.Add(name);
    return CString(full.Library());
}

CString CurrentFolder() {
    std::array<char, PATH_MAX> buffer;
    if (::getcwd(buffer.data(), buffer.size()) == nullptr) ThrowErrno(errno, "");
    return ToLibraryPath(buffer.data());
}

bool IsRoot(std::string_view path) {
    const ParsedPath parsed = Parse(path);
    return parsed.start != ParsedPath::Start::Here && parsed.names.size() == parsed.Fixed();
}

std::size_t NameStart(std::string_view path) {
    const std::size_t backslash = FindLastCharacter(path, '\\');
    const std::size_t slash = FindLastCharacter(path, '/');
    // npos + 1 is 0, so a missing separator never wins.
    const std::size_t start = std::max(backslash + 1, slash + 1);
    return start == 0 && StartsWithDrive(path) ? 2 : start;
}

std::size_t FindSeparator(std::string_view path, std::size_t from) {
    return std::min({FindCharacter(path, '\\', from), FindCharacter(path, '/', from), path.size()});
}

std::string ResolveLinks(const std::string& posixPath, std::string_view name) {
    constexpr int kMaxLinks = 40;  // like the system's own limit
    std::array<char, PATH_MAX> found;
    std::string path = posixPath;
    for (int links = 0; links < kMaxLinks; ++links) {
        const ssize_t length = ::readlink(path.c_str(), found.data(), found.size());
        if (length >= 0) {
            CheckMayFollow(path, name);
            const std::string target(found.data(), static_cast<std::size_t>(length));
            path = target.starts_with('/') ? target : PosixFolderOf(path) + '/' + target;
            continue;
        }
        if (errno == EINVAL && ::realpath(path.c_str(), found.data()) != nullptr) return found.data();
        if (errno != ENOENT) ThrowErrno(errno, name, path);
        return path;  // a file that does not exist yet
    }
    ThrowErrno(ELOOP, name);
}

std::string PosixFolderOf(std::string_view posixPath) {
    const std::size_t slash = posixPath.rfind('/');
    if (slash == std::string_view::npos) return ".";
    return std::string(posixPath.substr(0, slash == 0 ? 1 : slash));
}

}  // namespace qel
