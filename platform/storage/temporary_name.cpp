#include "qellib10/platform/storage/temporary_name.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "qellib10/platform/random.h"
#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::size_t kNameReserve = 14;  // a separator, 3 + 4 + 4 bytes, the terminator and a reserve
constexpr std::size_t kPrefixBytes = 3;
constexpr std::size_t kDigits = 4;
constexpr unsigned kNumbers = 0xFFFF;  // 0 means any number, so it is not one of them
constexpr mode_t kOwnerOnly = 0600;
constexpr std::string_view kExtension = ".TMP";

bool EndsWithSeparator(std::string_view folder) { return !folder.empty() && NameStart(folder) == folder.size(); }

std::string Name(std::string_view folder, std::string_view prefix, unsigned number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04X%s", number, kExtension.data());
    std::string name(folder);
    if (!EndsWithSeparator(folder)) name += '\\';
    return name.append(LeftWhole(prefix, kPrefixBytes)).append(digits);
}

// A separator in it would lead out of the folder.
void CheckPrefix(std::string_view prefix) {
    const std::string_view used = LeftWhole(prefix, kPrefixBytes);
    if (FindSeparator(used) != used.size()) ThrowCode(kBadName, prefix);
}

void CheckFolder(std::string_view folder) {
    struct stat status = {};
    const std::string posix = ToPosixPath(folder);
    if (::stat(posix.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) ThrowCode(kNotAFolder, folder);
}

}  // namespace

bool IsTemporaryFile(std::string_view path, const struct stat& status) {
    std::string_view name = path.substr(NameStart(path));
    if (status.st_mode != (S_IFREG | kOwnerOnly) || !name.ends_with(kExtension)) return false;
    name.remove_suffix(kExtension.size());
    if (name.size() < kDigits || name.size() > kPrefixBytes + kDigits) return false;
    return name.find_first_not_of("0123456789ABCDEF", name.size() - kDigits) == std::string_view::npos;
}

CString TemporaryFolder() {
    std::string folder = "/tmp";
    for (const char* variable : {"TMPDIR", "TMP", "TEMP"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || value[0] != '/') continue;
        folder = value;
        break;
    }
    CString name = ToLibraryPath(folder);
    if (!EndsWithSeparator(name.View())) name += '\\';
    return name;
}

CString TemporaryName(std::string_view folder, std::string_view prefix, UINT number) {
    if (folder.size() > MAX_PATH - kNameReserve) ThrowCode(kBufferTooSmall, folder);
    CheckPrefix(prefix);
    if (number != 0) return CString(Name(folder, prefix, number & 0xFFFF));
    CheckFolder(folder);
    const unsigned first = RandomNumber() % kNumbers;
    for (unsigned tries = 0; tries < kNumbers; ++tries) {
        // checked first, so that no file is left that nobody knows of
        CString name(Name(folder, prefix, (first + tries) % kNumbers + 1));
        const std::string posix = ToPosixPath(name.View());
        const Descriptor made(::open(posix.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly));
        if (made) return name;
        if (errno != EEXIST) ThrowErrno(errno, name.View(), posix);
    }
    ThrowCode(kFileExists, folder);
}

}  // namespace qel
