#include "qellib10/platform/sync/object_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/record_lock.h"
#include "qellib10/platform/storage/uninterrupted.h"
#include "qellib10/platform/sync/mapped_mutex.h"
#include "qellib10/platform/sync/object_file.h"
#include "qellib10/platform/sync/system_failure.h"

namespace qel {
namespace {

constexpr const char* kLockFile = ".lock";
constexpr mode_t kUserOnly = 0700, kUserFile = 0600, kOthers = 077;
constexpr int kAttempts = 100;

// Kept open: the folder is found and checked once, not for every object.
struct Folder {
    Descriptor descriptor, lock;
    uid_t user = 0;
    unsigned number = 0;
};

Folder& KeptFolder() {
    static Folder& folder = *new Folder;  // never destroyed: objects may be released after all statics
    return folder;
}

[[noreturn]] void Fail(int error, std::string_view path = {}) {
    throw SystemFailure{error == ENOSPC ? LONG{kOutOfMemory} : CodeOfErrno(error, path)};
}

// The one place that all programs of a user see, with a session and without, whatever their environment says. Anybody
// may create a folder there, even one with another user's number: then further names are used.
std::string FolderName(uid_t user, int number) {
    const std::string first = "/dev/shm/qellib10-" + std::to_string(user);
    return number == 0 ? first : first + '-' + std::to_string(number);
}

// @return nothing if there is no folder, or one that does not belong to the user alone
Descriptor OpenOwn(const std::string& path, uid_t user) {
    Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const bool isNotThere = errno == ENOENT || errno == ENOTDIR || errno == ELOOP || errno == EACCES;
    if (!folder && isNotThere) return folder;
    struct stat status {};
    if (!folder || ::fstat(folder.Get(), &status) != 0) Fail(errno, path);  // it may exist: none must be created
    if (status.st_uid != user || (status.st_mode & kOthers) != 0) folder.Reset();
    return folder;
}

// The folder, created if missing. @return nothing if another user's folder is there, or none can be created
Descriptor MakeOwn(const std::string& path, uid_t user) {
    if (::mkdir(path.c_str(), kUserOnly) != 0 && errno != EEXIST) Fail(errno, path);
    return OpenOwn(path, user);
}

// Existing folders are taken first, so that a name that another user gives up later does not lead to a second folder.
Descriptor OpenFolder(uid_t user) {
    constexpr int kMaxNames = 16;
    for (int number = 0; number < kMaxNames; ++number) {
        if (Descriptor folder = OpenOwn(FolderName(user, number), user)) return folder;
    }
    for (int number = 0; number < kMaxNames; ++number) {
        if (Descriptor folder = MakeOwn(FolderName(user, number), user)) return folder;
    }
    throw SystemFailure{kAccessDenied};
}

int OpenIn(const Descriptor& folder, const std::string& file, int flags) {
    return Uninterrupted([&] {
        return ::openat(folder.Get(), file.c_str(), flags | O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, kUserFile);
    });
}

bool SetLock(const Descriptor& file, short type) {
    struct flock lock = RecordLock(type, 0, 1);
    return Uninterrupted([&] { return ::fcntl(file.Get(), F_OFD_SETLKW, &lock); }) == 0;
}

// Removes the files that nobody holds, but for those of mutexes whose owner died: whoever makes the mutex again is
// informed. A file that cannot be opened is not ours and stays.
void Sweep(const Descriptor& folder) {
    Descriptor copy(::openat(folder.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!copy) Fail(errno);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(copy.Get()), ::closedir);
    if (listing == nullptr) Fail(errno);
    copy.Release();  // now owned by the listing
    while (const dirent* entry = ::readdir(listing.get())) {
        if (entry->d_name[0] != ObjectFileName({})[0]) continue;
        const Descriptor file(OpenIn(folder, entry->d_name, 0));
        if (file && !IsHeld(file) && !IsLeftOwned(file)) ::unlinkat(folder.Get(), entry->d_name, 0);
    }
}

}  // namespace

FolderLock::FolderLock() {
    Folder& folder = KeptFolder();
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const uid_t user = ::geteuid();
        const bool isFirst = !folder.descriptor || folder.user != user;
        if (isFirst) folder = {OpenFolder(user), {}, user, folder.number + 1};
        if (!folder.lock) folder.lock.Reset(OpenIn(folder.descriptor, kLockFile, O_CREAT));
        if (!folder.lock && errno != ENOENT) Fail(errno);
        if (folder.lock && !SetLock(folder.lock, F_WRLCK)) Fail(errno);
        if (folder.lock && Look(folder.lock, 0).hasName) {
            if (isFirst) Sweep(folder.descriptor);
            return;
        }
        folder.lock.Reset();
        folder.descriptor.Reset();  // the folder has been deleted, or soon will be
    }
    throw SystemFailure{kGeneralFailure};
}

FolderLock::Release::~Release() { SetLock(KeptFolder().lock, F_UNLCK); }

void FolderLock::Forget() { KeptFolder().lock.Reset(); }

Descriptor FolderLock::Open(const std::string& file) const {
    Descriptor descriptor(OpenIn(KeptFolder().descriptor, file, 0));
    if (!descriptor && errno != ENOENT) Fail(errno);
    return descriptor;
}

Descriptor FolderLock::Create(const std::string& file) const {
    Descriptor descriptor(OpenIn(KeptFolder().descriptor, file, O_CREAT | O_EXCL));
    if (!descriptor) Fail(errno);
    return descriptor;
}

void FolderLock::Remove(const std::string& file) const {
    if (::unlinkat(KeptFolder().descriptor.Get(), file.c_str(), 0) != 0 && errno != ENOENT) Fail(errno);
}

unsigned FolderLock::Number() const { return KeptFolder().number; }

Descriptor CreateNamelessFile() {
    Descriptor file(::memfd_create("qellib10", MFD_CLOEXEC));
    if (!file) Fail(errno);
    return file;
}

}  // namespace qel
