#include "qellib10/platform/storage/same_file.h"

#include <sys/stat.h>

namespace qel {

bool IsSameFile(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

bool IsStillAt(const std::string& posixPath, const struct stat& opened) {
    struct stat now = {};
    return ::stat(posixPath.c_str(), &now) == 0 && IsSameFile(now, opened);
}

}  // namespace qel
