#include "qellib10/file/log_file.h"

#include <unistd.h>

#include <span>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/open.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr OpenRequest kAppend = {
    .mode = {.write = true, .denyRead = true, .denyWrite = true}, .create = true, .append = true};

}  // namespace

LogFile::~LogFile() {
    if (!m_file) return;
    // Behind what was appended, by itself alone: until the file is closed it is nobody else's.
    const off_t end = m_appended > 0 ? ::lseek(m_file.Get(), 0, SEEK_CUR) : -1;
    const off_t start = end - static_cast<off_t>(m_appended);
    if (end >= 0 && start >= 0) Uninterrupted([&] { return ::ftruncate(m_file.Get(), start); });
    CloseShared(m_file);
}

LONG LogFile::Open(const CString& path) {
    m_path = path;
    try {
        return TryOpenShared(ToPosixPath(path.View()), kAppend, m_file);
    } catch (const CFileException& failure) {  // this cannot be a path
        return failure.m_lOsError;
    }
}

void LogFile::Append(std::string_view text) {
    WriteFully(m_file, std::as_bytes(std::span(text)), m_path.View(), m_appended);
}

void LogFile::Close() {
    if (const int error = CloseShared(m_file)) ThrowWriteErrno(error, m_path.View());
}

}  // namespace qel
