#include "qellib10/platform/storage/folder_walk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/file_failure.h"
#include "qellib10/platform/storage/path.h"

namespace qel {
namespace {

constexpr int kEnter = O_PATH | O_DIRECTORY | O_CLOEXEC;

// An invalid name matches no folder.
template <class Step> bool WithName(std::string_view name, Step&& step) {
    try {
        return step(name == "." || name == ".." ? std::string(name) : ToPosixName(name));
    } catch (const CFileException& failure) {
        return RefuseBy(failure) != 0;
    }
}

}  // namespace

FolderWalk::FolderWalk(std::string_view start) {
    const std::string posix = start.empty() ? "." : ToPosixPath(start);
    m_folder.Reset(::open(posix.c_str(), kEnter));
    if (!m_folder) ThrowErrno(errno, start, posix);
}

bool FolderWalk::Enter(std::string_view name) {
    return WithName(name, [&](const std::string& posix) {
        // The walk may only be where the process could be: in a folder that it may search.
        if (::faccessat(m_folder.Get(), posix.c_str(), X_OK, AT_EACCESS) != 0) return RefuseErrno(errno, name) != 0;
        Descriptor next(::openat(m_folder.Get(), posix.c_str(), kEnter));
        if (!next) return RefuseErrno(errno, name) != 0;
        m_folder = std::move(next);
        return true;
    });
}

bool FolderWalk::Create(std::string_view name) {
    return WithName(name, [&](const std::string& posix) {
        if (::mkdirat(m_folder.Get(), posix.c_str(), 0777) == 0) return true;
        const int error = errno;
        struct stat status = {};
        const bool exists = error == EEXIST && ::fstatat(m_folder.Get(), posix.c_str(), &status, 0) == 0;
        if (exists && S_ISDIR(status.st_mode)) return true;
        return RefuseErrno(error, name) != 0;
    });
}

bool FolderWalk::MakeCurrent() const { return ::fchdir(m_folder.Get()) == 0; }

}  // namespace qel
