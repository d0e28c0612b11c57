#include "qellib10/platform/storage/file_exception.h"

#include <array>
#include <cstddef>

CFileException::~CFileException() = default;

const char* CFileException::what() const noexcept {
    static constexpr std::array kWords = {"no error",
                                          "file operation failed",
                                          "file not found",
                                          "bad path",
                                          "too many open files",
                                          "access denied",
                                          "file not open or not valid",
                                          "folder cannot be removed",
                                          "folder full",
                                          "bad file position",
                                          "input or output error",
                                          "file in use by another opening",
                                          "file region locked",
                                          "disk full",
                                          "end of file"};
    const auto index = static_cast<std::size_t>(m_cause);
    return index < kWords.size() ? kWords[index] : kWords[genericException];
}
