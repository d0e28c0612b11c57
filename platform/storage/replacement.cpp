#include "qellib10/platform/storage/replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "qellib10/platform/storage/access_rights.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_attributes.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/rename_new.h"
#include "qellib10/platform/storage/same_file.h"
#include "qellib10/platform/storage/share_lock.h"
#include "qellib10/platform/storage/unfinished_file.h"

namespace qel {
namespace {

constexpr mode_t kOwnerOnly = 0600;

// @return false if there is no such file
bool IsThere(const std::string& posixPath, std::string_view name, struct stat& status) {
    if (::stat(posixPath.c_str(), &status) == 0) return true;
    if (errno != ENOENT) ThrowErrno(errno, name, posixPath);  // a secret must not become readable for everybody
    return false;
}

// Whether the file, and above all its rights, has not changed and was not replaced.
bool IsUnchanged(const struct stat& before, const struct stat& now) {
    return IsSameFile(before, now) && before.st_ctim.tv_sec == now.st_ctim.tv_sec &&
           before.st_ctim.tv_nsec == now.st_ctim.tv_nsec && before.st_mode == now.st_mode &&
           before.st_uid == now.st_uid && before.st_gid == now.st_gid;
}

Content ContentOf(int moved) { return moved < 0 ? Content::kNew : Content::kMoved; }

}  // namespace

Replacement::Replacement(std::string_view path, unsigned newMode)
    : m_name(path),
      m_target(ResolveLinks(ToPosixPath(path), path)),
      m_pattern(m_target),
      m_newMode(newMode),
      m_given(std::make_unique<struct stat>()) {
    Make();
}

Replacement::Replacement(std::string_view path, const std::string& posixPattern)
    : m_name(path),
      m_target(ResolveLinks(ToPosixPath(path), path)),
      m_pattern(posixPattern),
      m_given(std::make_unique<struct stat>()) {
    Make();
}

Replacement::Replacement(std::string_view path, const Descriptor& moved)
    : m_name(path),
      m_target(ResolveLinks(ToPosixPath(path), path)),
      m_moved(moved.Get()),
      m_given(std::make_unique<struct stat>()) {
    Make();
}

Replacement::~Replacement() = default;

const Descriptor& Replacement::File() const noexcept { return m_made->File(); }

CString Replacement::Path() const {
    std::string made = m_made->Path();
    if (const std::size_t name = made.rfind('/') + 1; made.find("../") < name) {
        const std::unique_ptr<char, decltype(&std::free)> folder(::realpath(made.substr(0, name).c_str(), nullptr),
                                                                 std::free);
        if (!folder) ThrowErrno(errno, m_name, made);
        made = std::string(folder.get()) + '/' + made.substr(name);
    }
    CString path = ToLibraryPath(made);
    ToPosixPath(path.View());  // throws if it is too long
    return path;
}

// @return false if there is none
bool Replacement::FindPattern(struct stat& pattern) const {
    if (m_moved < 0) return IsThere(m_pattern, m_name, pattern) && S_ISREG(pattern.st_mode);
    if (::fstat(m_moved, &pattern) != 0) ThrowErrno(errno, m_name);
    return true;
}

FileAttributes Replacement::Attributes() const {
    return m_moved < 0 ? FileAttributes(m_pattern, m_name) : FileAttributes(m_moved, m_name);
}

void Replacement::Make() {
    const bool isThere = FindPattern(*m_given);
    m_made = std::make_unique<UnfinishedFile>(m_target, isThere ? kOwnerOnly : m_newMode, m_name);
    if (isThere) GiveAccess(*m_given);
}

void Replacement::GiveAccess(const struct stat& pattern) {
    GiveAccessRights(File().Get(), pattern, Attributes(), ContentOf(m_moved), m_name);
}

// A file that was created meanwhile is replaced with its rights too. A file being moved has lost its set-user-id when
// its bytes were written.
void Replacement::GiveRights() {
    struct stat pattern = {};
    if (!FindPattern(pattern)) return;
    if (m_moved >= 0 || !IsUnchanged(*m_given, pattern)) GiveAccess(pattern);
    GiveAttributes(File().Get(), Attributes(), ContentOf(m_moved), m_name);
}

void Replacement::Commit() {
    FlushData(File(), m_name);
    const ExclusiveHold held(m_target, m_name);
    struct stat old = {};
    const bool hasOld = IsThere(m_target, m_name, old);
    if (hasOld && (!S_ISREG(old.st_mode) || (old.st_mode & 0222) == 0)) ThrowCode(kAccessDenied, m_name);
    GiveRights();
    if (!m_made->HasItsName()) ThrowCode(kSharingViolation, m_name);
    if (::rename(m_made->Path().c_str(), m_target.c_str()) != 0) ThrowErrno(errno, m_name, m_target);
    Done();
}

void Replacement::CommitNew() {
    FlushData(File(), m_name);
    if (m_pattern != m_target) GiveRights();
    if (!m_made->HasItsName()) ThrowCode(kSharingViolation, m_name);
    if (const int error = RenameNew(m_made->Path(), m_target)) {
        error == EEXIST ? ThrowCode(kFileExists, m_name) : ThrowErrno(error, m_name, m_target);
    }
    Done();
}

void Replacement::Done() {
    m_made->Finish();
    FlushFolderOf(m_target, m_name);
}

bool CanReplace(std::string_view path) {
    const std::string posix = ResolveLinks(ToPosixPath(path), path);
    const std::string folder = PosixFolderOf(posix);
    if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
        if (errno == EACCES || errno == EPERM || errno == EROFS) return false;
        ThrowErrno(errno, path, folder);
    }
    struct stat holding = {};
    struct stat held = {};
    if (::stat(folder.c_str(), &holding) != 0 || !IsThere(posix, path, held)) return true;  // the write will show it
    // In a folder like the one for temporary files, other users' files cannot be replaced, even if the folder is
    // writable.
    const uid_t user = ::geteuid();
    return (holding.st_mode & S_ISVTX) == 0 || user == 0 || user == holding.st_uid || user == held.st_uid;
}

}  // namespace qel
