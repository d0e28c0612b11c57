#include "qellib10/platform/storage/in_place.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/open.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/temporary_name.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr OpenRequest kAlone = {.mode = {.read = true, .write = true, .denyRead = true, .denyWrite = true}};

// A new file that only its owner can use and that disappears when it is closed.
Descriptor Unnamed() {
    const CString folder = TemporaryFolder();
    const std::string place = ToPosixPath(folder.View());
    Descriptor unnamed(Uninterrupted([&] { return ::open(place.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600); }));
    if (unnamed) return unnamed;
    if (errno != EOPNOTSUPP && errno != EISDIR) ThrowErrno(errno, folder.View(), place);
    const CString name = TemporaryName(folder.View(), "qel");
    const std::string path = ToPosixPath(name.View());
    Descriptor file(Uninterrupted([&] { return ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC); }));
    if (!file || ::unlink(path.c_str()) != 0) ThrowErrno(errno, name.View(), path);
    return file;
}

}  // namespace

InPlace::InPlace(std::string_view path)
    : m_name(path), m_file(OpenShared(ToPosixPath(path), kAlone, path)), m_former(Unnamed()) {
    struct stat status = {};
    if (::fstat(m_file.Get(), &status) != 0) ThrowErrno(errno, m_name);
    m_formerLength = static_cast<std::uint64_t>(status.st_size);
    CopyBytes(m_file, 0, m_former, 0, m_formerLength, m_name, "");
}

InPlace::~InPlace() {
    if (!m_isDone) {
        try {
            CopyBytes(m_former, 0, m_file, 0, m_formerLength, "", m_name);
            End(m_formerLength);
        } catch (const CFileException&) {  // the disk itself is damaged: it refuses bytes that it held before
        } catch (const std::bad_alloc&) {
        }
    }
    CloseShared(m_file);
}

void InPlace::End(std::uint64_t length) const {
    const auto end = static_cast<off_t>(length);
    if (Uninterrupted([&] { return ::ftruncate(m_file.Get(), end); }) != 0) ThrowErrno(errno, m_name);
    FlushData(m_file, m_name);
}

void InPlace::Commit(std::uint64_t length) {
    End(length);
    m_isDone = true;
}

}  // namespace qel
