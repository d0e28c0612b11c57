#include "qellib10/platform/storage/file_operations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/in_place.h"
#include "qellib10/platform/storage/open.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/rename_new.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/platform/storage/same_file.h"
#include "qellib10/platform/storage/share_lock.h"
#include "qellib10/platform/storage/temporary_name.h"

namespace qel {
namespace {

using Status = struct stat;

// @param flags of fstatat. @return nothing if there is no such file
std::optional<Status> StatusOf(const std::string& posix, std::string_view name, int flags) {
    Status status = {};
    if (::fstatat(AT_FDCWD, posix.c_str(), &status, flags) == 0) return status;
    if (errno != ENOENT) ThrowErrno(errno, name, posix);
    return std::nullopt;
}

constexpr int kOfLink = AT_SYMLINK_NOFOLLOW;

bool IsReadOnly(const Status& status) { return S_ISREG(status.st_mode) && (status.st_mode & 0222) == 0; }

// Another user's file keeps its own times, because only its owner may set them.
void CopyAttributes(const Status& source, const Descriptor& target, std::string_view name) {
    const std::array<timespec, 2> times = {timespec{0, UTIME_OMIT}, source.st_mtim};
    if (::futimens(target.Get(), times.data()) != 0) {
        if (errno == EPERM) return;
        ThrowErrno(errno, name);
    }
    Status made = {};
    if (!IsReadOnly(source)) return;
    if (::fstat(target.Get(), &made) != 0 || ::fchmod(target.Get(), made.st_mode & 07555) != 0) ThrowErrno(errno, name);
}

// The source of a copy, open and described.
class Source {
public:
    explicit Source(std::string_view name)
        : m_name(name), m_file(OpenShared(ToPosixPath(name), {.mode = {.read = true}}, name)) {
        if (::fstat(m_file.Get(), &m_status) != 0) ThrowErrno(errno, name);
    }
    ~Source() { CloseShared(m_file); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    // @return the number of bytes
    std::uint64_t CopyTo(const Descriptor& target, std::string_view name) const {
        return CopyBytes(m_file, 0, target, 0, static_cast<std::uint64_t>(m_status.st_size), m_name, name);
    }
    const Descriptor& File() const { return m_file; }
    const Status& Description() const { return m_status; }
    bool IsTemporary() const { return IsTemporaryFile(m_name, m_status); }

private:
    std::string_view m_name;
    Descriptor m_file;
    Status m_status = {};
};

enum class Purpose { kCopy, kMove };

// Creates the copy of a file with the access rights that it will have.
std::unique_ptr<Replacement> NewCopy(const Source& source, std::string_view target, Purpose purpose,
                                     std::string_view inPlaceOf) {
    if (source.IsTemporary()) return std::make_unique<Replacement>(target, ToPosixPath(inPlaceOf));
    if (purpose == Purpose::kMove) return std::make_unique<Replacement>(target, source.File());
    return std::make_unique<Replacement>(target, source.Description().st_mode & 0777);
}

void CopyInPlace(const Source& source, std::string_view target) {
    InPlace file(target);
    file.Commit(source.CopyTo(file.File(), target));
    CopyAttributes(source.Description(), file.File(), target);  // last, because setting the end also sets the time
}

// @return 0 or the errno of the system: EXDEV also for a temporary file, which must not keep its rights
int RenameUnused(const std::string& from, std::string_view sourceName, const Status& status, const std::string& to) {
    const ExclusiveHold held(from, sourceName);
    return IsTemporaryFile(sourceName, status) ? EXDEV : RenameNew(from, to);
}

void Unlink(const std::string& posix, std::string_view name) {
    const ExclusiveHold held(posix, name);
    if (::unlink(posix.c_str()) != 0) ThrowErrno(errno, name, posix);
}

void Copy(std::string_view source, std::string_view target, bool mustBeNew, Purpose purpose,
          std::string_view inPlaceOf) {
    const Source from(source);
    const std::string to = ToPosixPath(target);
    const std::optional<Status> old = StatusOf(to, target, 0);
    if (old && mustBeNew) ThrowCode(kFileExists, target);
    if (old && (!S_ISREG(old->st_mode) || IsReadOnly(*old))) ThrowCode(kAccessDenied, target);
    if (old && IsSameFile(*old, from.Description())) ThrowCode(kSharingViolation, target);
    if (old && !CanReplace(target)) return CopyInPlace(from, target);

    const auto made = NewCopy(from, target, purpose, inPlaceOf);
    from.CopyTo(made->File(), target);
    mustBeNew ? made->CommitNew() : made->Commit();
    CopyAttributes(from.Description(), made->File(), target);
}

}  // namespace

void CopyFile(std::string_view source, std::string_view target, bool mustBeNew) {
    Copy(source, target, mustBeNew, Purpose::kCopy, target);
}

void CopyToMove(std::string_view source, std::string_view target, bool mustBeNew) {
    Copy(source, target, mustBeNew, Purpose::kMove, target);
}

void CopyToWait(std::string_view source, std::string_view waiting, std::string_view target) {
    Copy(source, waiting, true, Purpose::kMove, target);
}

void MoveFile(std::string_view source, std::string_view target) {
    const std::string from = ToPosixPath(source);
    const std::string to = ToPosixPath(target);
    const std::optional<Status> status = StatusOf(from, source, kOfLink);
    if (!status) ThrowErrno(ENOENT, source, from);
    const std::optional<Status> old = StatusOf(to, target, kOfLink);
    // A file with several names is moved onto itself only if both are the same name.
    const bool hasOneName = status->st_nlink == 1 || S_ISDIR(status->st_mode) || from == to;
    if (old && IsSameFile(*status, *old) && hasOneName) return;

    const int error = RenameUnused(from, source, *status, to);
    if (error == 0) return;
    if (error == EEXIST || (error == EXDEV && old)) ThrowCode(kAlreadyExists, target);
    if (error != EXDEV || !S_ISREG(status->st_mode)) ThrowErrno(error, target, to);
    CopyToMove(source, target, true);
    Unlink(from, source);
}

void DeleteFile(std::string_view name) {
    const std::string posix = ToPosixPath(name);
    const std::optional<Status> status = StatusOf(posix, name, kOfLink);
    if (!status) ThrowErrno(ENOENT, name, posix);
    if (S_ISDIR(status->st_mode) || IsReadOnly(*status)) ThrowCode(kAccessDenied, name);
    Unlink(posix, name);
}

}  // namespace qel
