#include "qellib10/platform/storage/path.h"

#include <linux/limits.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {

std::string ToPosixPath(std::string_view path) {
    if (path.empty()) ThrowCode(kFolderMissing, path);
    if (path.size() >= MAX_PATH) ThrowCode(kPathTooLong, path);
    CString slashes(path);
    slashes.Replace('\\', '/');
    return ToUtf8(slashes.View());
}

CString FullPath(std::string_view path) {
    CString full(path);
    full.Replace('/', '\\');
    if (full.GetAt(0) == '\\') return full;
    std::array<char, PATH_MAX> buffer;
    if (::getcwd(buffer.data(), buffer.size()) == nullptr) ThrowErrno(errno, path);
    CString folder(FromUtf8(buffer.data()));
    folder.Replace('/', '\\');
    return folder + "\\" + full;
}

std::size_t NameStart(std::string_view path) {
    // npos + 1 is 0, so that a missing separator loses.
    return std::max(FindLastCharacter(path, '\\') + 1, FindLastCharacter(path, '/') + 1);
}

}  // namespace qel
