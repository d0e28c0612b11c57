#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace tool {

Progress::Progress(std::size_t all)
    : m_all(std::max<std::size_t>(all, 1)), m_isTerminal(::isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    if (m_isTerminal) std::fputs("\r\x1B[K", stderr);
}

void Progress::Show(std::size_t done) const {
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = kWidth * done / m_all;
    std::fprintf(stderr, "\r[%s%s] %zu of %zu files", std::string(filled, '#').c_str(),
                 std::string(kWidth - filled, ' ').c_str(), done, m_all);
}

}  // namespace tool
