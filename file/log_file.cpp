#include "qellib10/file/log_file.h"

#include <span>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/open.h"
#include "qellib10/platform/storage/path.h"

namespace qel {
namespace {

constexpr OpenRequest kAppend = {
    .mode = {.write = true, .denyRead = true, .denyWrite = true}, .create = true, .append = true};

}  // namespace

LogFile::~LogFile() {
    if (!m_file) return;
    CutBack(m_file, m_appended);  // only our bytes: nobody else can open the file before we close it
    CloseShared(m_file);
}

LONG LogFile::Open(const CString& path) {
    m_path = path;
    try {
        return TryOpenShared(ToPosixPath(path.View()), kAppend, m_file);
    } catch (const CFileException& failure) {  // this is not a valid path
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
