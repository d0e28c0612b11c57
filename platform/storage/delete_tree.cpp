#include "qellib10/platform/storage/delete_tree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/same_file.h"
#include "qellib10/platform/storage/share_lock.h"

namespace qel {
namespace {

using Status = struct stat;

constexpr int kDeepest = 1000;  // one descriptor each; names as long as paths allow reach level 130
constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

// Reads all names first, so that deleting does not disturb the listing.
std::vector<std::string> NamesIn(const Descriptor& folder, std::string_view name) {
    Descriptor listed(::openat(folder.Get(), ".", kOpenFolder));
    if (!listed) ThrowErrno(errno, name);
    const std::unique_ptr<DIR, CloseFolder> listing(::fdopendir(listed.Get()));
    if (!listing) ThrowErrno(errno, name);
    listed.Release();  // the listing closes it
    std::vector<std::string> names;
    for (errno = 0; const dirent* entry = ::readdir(listing.get()); errno = 0) {
        const std::string_view found = entry->d_name;
        if (found != "." && found != "..") names.emplace_back(found);
    }
    if (errno != 0) ThrowErrno(errno, name);
    return names;
}

// Steps from a folder to its entries through its descriptor, so that nobody can put a link in between.
class TreeDeletion {
public:
    explicit TreeDeletion(std::string_view name) : m_name(name) {}

    void Empty(const Descriptor& folder, int level) const {
        if (level == kDeepest) ThrowCode(kPathTooLong, m_name);
        for (const std::string& name : NamesIn(folder, m_name)) Delete(folder, name, level);
    }

private:
    void Delete(const Descriptor& folder, const std::string& name, int level) const {
        Status status = {};
        if (::fstatat(folder.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return CheckGone();
        if (!S_ISDIR(status.st_mode)) return DeleteFile(folder, name, status);
        const Descriptor inner(::openat(folder.Get(), name.c_str(), kOpenFolder));
        if (!inner) return CheckGone();
        Empty(inner, level + 1);
        if (::unlinkat(folder.Get(), name.c_str(), AT_REMOVEDIR) != 0) CheckGone();
    }

    void DeleteFile(const Descriptor& folder, const std::string& name, const Status& status) const {
        if (S_ISREG(status.st_mode) && (status.st_mode & 0222) == 0) ThrowCode(kAccessDenied, m_name);
        const ExclusiveHold held("/proc/self/fd/" + std::to_string(folder.Get()) + '/' + name, m_name);
        if (::unlinkat(folder.Get(), name.c_str(), 0) != 0) CheckGone();
    }

    void CheckGone() const {
        if (errno != ENOENT) ThrowErrno(errno, m_name);
    }

    std::string_view m_name;
};

void RefuseRoot(const Descriptor& folder, std::string_view name) {
    Status status = {};
    Status root = {};
    if (::fstat(folder.Get(), &status) != 0 || ::stat("/", &root) != 0) ThrowErrno(errno, name);
    if (IsSameFile(status, root)) ThrowCode(kAccessDenied, name);
}

}  // namespace

void DeleteTree(std::string_view folder) {
    if (IsRoot(folder)) ThrowCode(kAccessDenied, folder);
    const std::string posix = ToPosixPath(folder);
    Status status = {};
    if (::lstat(posix.c_str(), &status) != 0) {
        if (errno != ENOENT) ThrowErrno(errno, folder, posix);
        return;
    }
    Status target = {};
    const bool leadsToOne = ::stat(posix.c_str(), &target) == 0;
    if (!leadsToOne && errno != ENOENT) ThrowErrno(errno, folder, posix);
    if (leadsToOne && !S_ISDIR(target.st_mode)) ThrowCode(kNotAFolder, folder);
    if (S_ISLNK(status.st_mode)) {
        if (::unlink(posix.c_str()) != 0) ThrowErrno(errno, folder, posix);
        return;
    }
    const Descriptor top(::open(posix.c_str(), kOpenFolder));
    if (!top) ThrowErrno(errno, folder, posix);
    RefuseRoot(top, folder);
    TreeDeletion(folder).Empty(top, 0);
    if (::rmdir(posix.c_str()) != 0 && errno != ENOENT) ThrowErrno(errno, folder, posix);
}

}  // namespace qel
