#include "qellib10/platform/storage/replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "qellib10/platform/random.h"
#include "qellib10/platform/storage/access_rights.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/rename_new.h"
#include "qellib10/platform/storage/share_lock.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr std::size_t kLongestName = 255;  // bytes of a name on disk
constexpr int kTries = 0xFFFF;

std::string TemporaryName(const std::string& target, unsigned number) {
    char suffix[16];
    const int length = std::snprintf(suffix, sizeof suffix, ".%04X.tmp", number & 0xFFFF);
    const std::size_t start = target.rfind('/') + 1;  // npos + 1 is 0
    return target.substr(0, start) + target.substr(start, kLongestName - static_cast<std::size_t>(length)) + suffix;
}

}  // namespace

Replacement::Replacement(std::string_view path) : m_name(path), m_target(BehindLinks(ToPosixPath(path), path)) {
    const unsigned start = RandomNumber();
    for (unsigned tries = 0; tries < kTries; ++tries) {
        m_temporary = TemporaryName(m_target, start + tries);
        constexpr int kNew = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
        m_file.Reset(Uninterrupted([&] { return ::open(m_temporary.c_str(), kNew, 0666); }));
        if (m_file || errno != EEXIST) break;
    }
    if (!m_file) ThrowErrno(errno, m_name, m_target);
}

Replacement::~Replacement() {
    if (!m_temporary.empty()) ::unlink(m_temporary.c_str());
}

void Replacement::TakeRightsOfOld() {
    struct stat old = {};
    if (::stat(m_target.c_str(), &old) != 0) {
        if (errno != ENOENT) ThrowErrno(errno, m_name, m_target);  // a secret must not become everybody's
        return;
    }
    if (!S_ISREG(old.st_mode) || (old.st_mode & 0222) == 0) ThrowCode(kAccessDenied, m_name);
    if (const int error = GiveAccessRights(m_file.Get(), old)) ThrowErrno(error, m_name);
}

void Replacement::Commit() {
    FlushData(m_file, m_name);
    const UnusedFile old(m_target, m_name);
    TakeRightsOfOld();
    if (::rename(m_temporary.c_str(), m_target.c_str()) != 0) ThrowErrno(errno, m_name, m_target);
    Done();
}

void Replacement::CommitNew() {
    FlushData(m_file, m_name);
    if (const int error = RenameNew(m_temporary, m_target)) {
        error == EEXIST ? ThrowCode(kFileExists, m_name) : ThrowErrno(error, m_name, m_target);
    }
    Done();
}

void Replacement::Done() {
    m_temporary.clear();
    FlushFolderOf(m_target, m_name);
}

}  // namespace qel
