#include "qellib10/platform/storage/access_rights.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/storage/access_list.h"
#include "qellib10/platform/storage/file_error.h"

namespace qel {
namespace {

constexpr mode_t kAllRights = 0777, kGroupAndOthers = 077, kSticky = S_ISVTX;

// @return false if the caller is not allowed to
bool ChangeOwner(int file, uid_t user, gid_t group, std::string_view name) {
    if (::fchown(file, user, group) == 0) return true;
    if (!IsNotAllowed(errno)) ThrowErrno(errno, name);
    return false;
}

mode_t KeptOf(mode_t mode, bool keepsOwner, Content content) {
    if (!keepsOwner) return mode & kAllRights;
    return mode & (content == Content::kNew ? kSticky | kAllRights : 07777);
}

bool IsKept(const std::string& attribute, Content content) {
    constexpr std::array<std::string_view, 3> kLeftOut = {AccessList::kName, "security.ima", "security.evm"};
    if (std::ranges::find(kLeftOut, attribute) != kLeftOut.end()) return false;
    return content == Content::kMoved || attribute != "security.capability";
}

}  // namespace

void GiveAccessRights(int file, const struct stat& old, const FileAttributes& attributes, Content content,
                      std::string_view name) {
    constexpr uid_t kAsItIs = static_cast<uid_t>(-1);
    struct stat own = {};
    if (::fstat(file, &own) != 0) ThrowErrno(errno, name);
    const bool hasGroup = own.st_gid == old.st_gid;
    const bool keepsOwner = (hasGroup && own.st_uid == old.st_uid) || ChangeOwner(file, old.st_uid, old.st_gid, name);
    const bool keepsGroup = keepsOwner || hasGroup || ChangeOwner(file, kAsItIs, old.st_gid, name);

    AccessList list(attributes);
    mode_t mode = KeptOf(old.st_mode, keepsOwner, content);
    if (!keepsGroup) mode = list.LimitGroupAndOthers(mode);
    if (const int error = list.GiveTo(file)) {
        if (!IsNotAllowed(error)) ThrowErrno(error, name);
        // A list from the folder stays, but gives nobody access while the group's bits are zero.
        const unsigned bits = list.IsEmpty() ? mode & 07 : list.WithoutNames(mode);
        mode = (mode & ~kGroupAndOthers) | bits;
    }
    if (::fchmod(file, mode) != 0) ThrowErrno(errno, name);
}

void GiveAttributes(int file, const FileAttributes& from, Content content, std::string_view name) {
    for (const std::string& attribute : from.Names()) {
        if (!IsKept(attribute, content)) continue;
        const std::optional<std::vector<std::byte>> value = from.Get(attribute);
        if (!value || ::fsetxattr(file, attribute.c_str(), value->data(), value->size(), 0) == 0) continue;
        if (!IsNotAllowed(errno) && errno != E2BIG && errno != ERANGE) ThrowErrno(errno, name);
    }
}

}  // namespace qel
