#include "qellib10/platform/archive/archive_exception.h"

#include <array>
#include <cstddef>

CArchiveException::~CArchiveException() = default;

const char* CArchiveException::what() const noexcept {
    static constexpr std::array kWords = {"no error",
                                          "archive operation failed",
                                          "archive is for loading",
                                          "archive ends too early",
                                          "archive is for storing",
                                          "bad object number in archive",
                                          "bad class in archive",
                                          "class of another version in archive",
                                          "archive buffer full"};
    const auto index = static_cast<std::size_t>(m_cause);
    return index < kWords.size() ? kWords[index] : kWords[genericException];
}
