#include "failing_calls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <type_traits>
#include <utility>

// A shared object for LD_PRELOAD between a program with its libraries and the C library: the calls that
// work on files pass through it. Threads take no turns here.

namespace {

CallFailure theFailure = CallFailure::kEio;
int theCallsLeft = 0;
bool theRestFails = false;
void (*theWatcher)(int) = nullptr;

// How a call can fail beside EIO, which any can. What changes the disk is what can fill it.
enum Kinds : unsigned { kReads = 0, kFills = 1, kWaits = 2, kMoves = 4 };

bool FailsNow(unsigned kinds) {
    constexpr unsigned kWhichCan[] = {~0U, kFills, kWaits, kMoves};
    const bool can = theFailure == CallFailure::kEio || (kinds & kWhichCan[static_cast<int>(theFailure)]) != 0;
    if (!can || theCallsLeft == 0) return false;
    return (theCallsLeft == 1 && theRestFails) || --theCallsLeft == 0;
}

template <class R> R Failed() {
    constexpr int kErrors[] = {EIO, ENOSPC, EINTR};
    errno = kErrors[static_cast<int>(theFailure)];
    if constexpr (std::is_pointer_v<R>)
        return nullptr;
    else
        return R(-1);
}

// The C library's function of the same name as ours.
template <auto* kOurs> auto Real(const char* name) {
    static const auto real = reinterpret_cast<decltype(kOurs)>(::dlsym(RTLD_NEXT, name));
    return real;
}

// Reports a call to the watcher. @return the result of the call, with its errno
template <class R> R Watched(R result, int flushed = -1) {
    const int error = errno;
    const int left = std::exchange(theCallsLeft, 0);  // the watcher's own calls work
    if (theWatcher != nullptr) theWatcher(flushed);
    theCallsLeft = left;
    errno = error;
    return result;
}

template <auto* kOurs, class... A> auto Call(const char* name, unsigned kinds, A... arguments) {
    const auto real = Real<kOurs>(name);
    if (FailsNow(kinds)) return Failed<decltype(real(arguments...))>();
    return (kinds & kFills) != 0 ? Watched(real(arguments...)) : real(arguments...);
}

template <auto* kOurs> int Flush(const char* name, int file) {
    const auto real = Real<kOurs>(name);
    return FailsNow(kFills | kWaits) ? Failed<int>() : Watched(real(file), file);
}

// A call that moves @p count bytes, perhaps not all of them.
template <class Real> ssize_t Move(unsigned kinds, std::size_t count, Real&& real) {
    const auto move = [&](std::size_t n) { return (kinds & kFills) != 0 ? Watched(real(n)) : real(n); };
    const bool cannot = theFailure == CallFailure::kShort && count < 2;
    if (cannot || !FailsNow(kinds | kWaits | kMoves)) return move(count);
    return theFailure == CallFailure::kShort ? move(count / 2) : Failed<ssize_t>();
}

template <class Argument> Argument Last(bool given, va_list rest) {
    return given ? va_arg(rest, Argument) : Argument();
}

}  // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's declarations have its own
#pragma GCC visibility push(default)
extern "C" {

void FailCall(CallFailure failure, int number) {
    theFailure = failure;
    theCallsLeft = number;
    theRestFails = false;
}
void FailCallsFrom(CallFailure failure, int number) {
    FailCall(failure, number);
    theRestFails = true;
}
int CallsLeft() { return theCallsLeft; }
void WatchDisk(void (*watcher)(int flushed)) { theWatcher = watcher; }

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const bool makes = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    const auto mode = Last<mode_t>(makes, rest);
    va_end(rest);
    return Call<&::open>("open", makes ? kFills | kWaits : kWaits, path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {  // nobody makes files by it
    return Call<&::openat>("openat", kWaits, folder, path, flags, 0);
}
int close(int file) {  // closed whatever it returns
    const int closed = Real<&::close>("close")(file);
    return FailsNow(kReads) ? Failed<int>() : closed;
}
int fcntl(int file, int command, ...) {
    va_list rest;
    va_start(rest, command);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    const bool isLock = command == F_OFD_SETLK || command == F_OFD_GETLK || command == F_SETLK || command == F_GETLK;
    if (!isLock && command != F_DUPFD_CLOEXEC) return Real<&::fcntl>("fcntl")(file, command, argument);
    return Call<&::fcntl>("fcntl", kReads, file, command, argument);
}

ssize_t read(int file, void* bytes, std::size_t count) {
    return Move(kReads, count, [=](std::size_t n) { return Real<&::read>("read")(file, bytes, n); });
}
ssize_t write(int file, const void* bytes, std::size_t count) {
    return Move(kFills, count, [=](std::size_t n) { return Real<&::write>("write")(file, bytes, n); });
}
ssize_t pread(int file, void* bytes, std::size_t count, off_t at) {
    return Move(kReads, count, [=](std::size_t n) { return Real<&::pread>("pread")(file, bytes, n, at); });
}
ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t at) {
    return Move(kFills, count, [=](std::size_t n) { return Real<&::pwrite>("pwrite")(file, bytes, n, at); });
}
ssize_t copy_file_range(int from, off_t* fromAt, int to, off_t* toAt, std::size_t count, unsigned flags) {
    return Move(kFills, count, [=](std::size_t n) {
        return Real<&::copy_file_range>("copy_file_range")(from, fromAt, to, toAt, n, flags);
    });
}
int ftruncate(int file, off_t size) { return Call<&::ftruncate>("ftruncate", kFills | kWaits, file, size); }
int fsync(int file) { return Flush<&::fsync>("fsync", file); }
int fdatasync(int file) { return Flush<&::fdatasync>("fdatasync", file); }
int flock(int file, int operation) { return Call<&::flock>("flock", kWaits, file, operation); }

int rename(const char* from, const char* to) { return Call<&::rename>("rename", kFills, from, to); }
int renameat2(int in, const char* from, int out, const char* to, unsigned flags) {
    return Call<&::renameat2>("renameat2", kFills, in, from, out, to, flags);
}
int unlink(const char* path) { return Call<&::unlink>("unlink", kFills, path); }
int unlinkat(int folder, const char* path, int flags) {
    return Call<&::unlinkat>("unlinkat", kFills, folder, path, flags);
}
int mkdir(const char* path, mode_t mode) { return Call<&::mkdir>("mkdir", kFills, path, mode); }
int mkdirat(int folder, const char* path, mode_t mode) {
    return Call<&::mkdirat>("mkdirat", kFills, folder, path, mode);
}
int rmdir(const char* path) { return Call<&::rmdir>("rmdir", kFills, path); }
int fchmod(int file, mode_t mode) { return Call<&::fchmod>("fchmod", kFills, file, mode); }
int fchown(int file, uid_t user, gid_t group) { return Call<&::fchown>("fchown", kFills, file, user, group); }
int futimens(int file, const timespec times[2]) { return Call<&::futimens>("futimens", kFills, file, times); }

int fsetxattr(int file, const char* name, const void* value, std::size_t size, int flags) {
    return Call<&::fsetxattr>("fsetxattr", kFills, file, name, value, size, flags);
}
int fremovexattr(int file, const char* name) { return Call<&::fremovexattr>("fremovexattr", kFills, file, name); }
ssize_t getxattr(const char* path, const char* name, void* value, std::size_t size) {
    return Call<&::getxattr>("getxattr", kReads, path, name, value, size);
}
ssize_t fgetxattr(int file, const char* name, void* value, std::size_t size) {
    return Call<&::fgetxattr>("fgetxattr", kReads, file, name, value, size);
}
ssize_t listxattr(const char* path, char* names, std::size_t size) {
    return Call<&::listxattr>("listxattr", kReads, path, names, size);
}
ssize_t flistxattr(int file, char* names, std::size_t size) {
    return Call<&::flistxattr>("flistxattr", kReads, file, names, size);
}
ssize_t readlink(const char* path, char* target, std::size_t size) {
    return Call<&::readlink>("readlink", kReads, path, target, size);
}

int stat(const char* path, struct stat* status) { return Call<&::stat>("stat", kReads, path, status); }
int lstat(const char* path, struct stat* status) { return Call<&::lstat>("lstat", kReads, path, status); }
int fstat(int file, struct stat* status) { return Call<&::fstat>("fstat", kReads, file, status); }
int fstatat(int folder, const char* path, struct stat* status, int flags) {
    return Call<&::fstatat>("fstatat", kReads, folder, path, status, flags);
}
int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) {
    return Call<&::statx>("statx", kReads, folder, path, flags, mask, status);
}
int access(const char* path, int mode) { return Call<&::access>("access", kReads, path, mode); }
int faccessat(int folder, const char* path, int mode, int flags) {
    return Call<&::faccessat>("faccessat", kReads, folder, path, mode, flags);
}
char* realpath(const char* path, char* resolved) { return Call<&::realpath>("realpath", kReads, path, resolved); }
DIR* opendir(const char* path) { return Call<&::opendir>("opendir", kReads, path); }
DIR* fdopendir(int folder) { return Call<&::fdopendir>("fdopendir", kReads, folder); }
dirent* readdir(DIR* folder) { return Call<&::readdir>("readdir", kReads, folder); }

// The names by which SQLite calls them.
decltype(::open) Open64 __asm__("open64") __attribute__((alias("open")));
decltype(::fcntl) Fcntl64 __asm__("fcntl64") __attribute__((alias("fcntl")));
decltype(::pread) Pread64 __asm__("pread64") __attribute__((alias("pread")));
decltype(::pwrite) Pwrite64 __asm__("pwrite64") __attribute__((alias("pwrite")));
decltype(::ftruncate) Ftruncate64 __asm__("ftruncate64") __attribute__((alias("ftruncate")));
decltype(::stat) Stat64 __asm__("stat64") __attribute__((alias("stat"), nothrow));
decltype(::lstat) Lstat64 __asm__("lstat64") __attribute__((alias("lstat"), nothrow));
decltype(::fstat) Fstat64 __asm__("fstat64") __attribute__((alias("fstat"), nothrow));
}
#pragma GCC visibility pop
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
