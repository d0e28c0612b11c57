#include "qellib10/platform/storage/access_rights.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <vector>

#include "qellib10/platform/storage/access_list.h"
#include "qellib10/platform/storage/file_error.h"

namespace qel {
namespace {

constexpr mode_t kGroup = 070;

// What the caller, or the file system, cannot do.
bool MayNot(int error) { return error == EPERM || error == EACCES || error == EINVAL || error == EOPNOTSUPP; }

// @return false when the caller may not
bool Own(int file, uid_t user, gid_t group, std::string_view name) {
    if (::fchown(file, user, group) == 0) return true;
    if (!MayNot(errno)) ThrowErrno(errno, name);
    return false;
}

}  // namespace

void GiveAccessRights(int file, const struct stat& old, const std::string& pattern, std::string_view name) {
    constexpr uid_t kAsItIs = static_cast<uid_t>(-1);
    struct stat own = {};
    if (::fstat(file, &own) != 0) ThrowErrno(errno, name);
    const bool hasGroup = own.st_gid == old.st_gid;
    const bool keepsOwner = (hasGroup && own.st_uid == old.st_uid) || Own(file, old.st_uid, old.st_gid, name);
    const bool keepsGroup = keepsOwner || hasGroup || Own(file, kAsItIs, old.st_gid, name);

    AccessList list(pattern, name);
    mode_t mode = old.st_mode & (keepsOwner ? 07777 : 0777);
    if (!keepsGroup) list.LimitGroup();
    if (!keepsGroup && list.IsEmpty()) mode &= ~kGroup | (mode << 3 & kGroup);
    if (const int error = list.GiveTo(file)) {
        if (!MayNot(error)) ThrowErrno(error, name);
        mode &= ~kGroup | list.GroupBits();  // without a list its mask would be the group's rights
    }
    if (::fchmod(file, mode) != 0) ThrowErrno(errno, name);
}

void GiveAttributes(int file, const std::string& pattern, std::string_view name) {
    constexpr std::array<std::string_view, 3> kLeftOut = {AccessList::kName, "security.ima", "security.evm"};
    const ssize_t size = ::listxattr(pattern.c_str(), nullptr, 0);
    std::vector<char> names(size > 0 ? static_cast<std::size_t>(size) : 0);
    const ssize_t got = names.empty() ? 0 : ::listxattr(pattern.c_str(), names.data(), names.size());
    if (got <= 0) return;
    for (const char* at = names.data(); at < names.data() + got; at += std::string_view(at).size() + 1) {
        if (std::ranges::find(kLeftOut, at) != kLeftOut.end()) continue;
        const std::optional<std::vector<std::byte>> value = AttributeOf(pattern, at, name);
        if (value) ::fsetxattr(file, at, value->data(), value->size(), 0);
    }
}

}  // namespace qel
