#include "qellib10/platform/storage/find_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

bool IsDots(std::string_view name) { return name == "." || name == ".."; }

// The folder part of a path, in a form that can be opened: "." for none, the root for a lone separator.
std::string FolderPart(std::string_view pattern) {
    const std::size_t start = NameStart(pattern);
    if (start == 0) return ".";
    return ToPosixPath(pattern.substr(0, start));
}

FoundFile Describe(const Folder& folder, const dirent& entry) {
    FoundFile found;
    found.name = ToLibraryName(entry.d_name);
    found.isFolder = entry.d_type == DT_DIR;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return found;
    // Deleted between listing and looking: it stays in the list as a file, and whoever uses the name will notice.
    struct stat status = {};
    found.isFolder = ::fstatat(::dirfd(folder.get()), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
    return found;
}

}  // namespace

std::vector<FoundFile> FindFiles(std::string_view pattern) {
    const std::string posix = FolderPart(pattern);
    const std::string_view wanted = pattern.substr(NameStart(pattern));
    const bool wild = wanted.find_first_of("*?") != std::string_view::npos;  // neither is ever a trail byte

    const Folder folder(::opendir(posix.c_str()));
    if (!folder) {
        errno == ENOENT ? ThrowCode(kFolderMissing, pattern) : ThrowErrno(errno, pattern, posix);
    }
    std::vector<FoundFile> files;
    for (errno = 0; const dirent* entry = ::readdir(folder.get()); errno = 0) {
        if (IsDots(entry->d_name)) continue;
        FoundFile found = Describe(folder, *entry);
        const bool matches = wild ? MatchesPattern(found.name.View(), wanted) : found.name.View() == wanted;
        if (matches) files.push_back(std::move(found));
    }
    if (errno != 0) ThrowErrno(errno, pattern);
    std::ranges::sort(files, {}, [](const FoundFile& file) { return file.name.View(); });
    return files;
}

}  // namespace qel
