#include "progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace tool {

ProgressBar::ProgressBar(std::size_t all, std::string unit)
    : m_all(std::max<std::size_t>(all, 1)), m_unit(std::move(unit)), m_isTerminal(::isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
    if (m_isTerminal) std::fputs("\r\x1B[K", stderr);
}

// A line that does not fit would continue on the next one, where the next bar starts.
void ProgressBar::Show(std::size_t done) const {
    constexpr std::size_t kWidest = 40, kBrackets = 3;
    done = std::min(done, m_all);  // a file may grow while it is read
    winsize terminal = {};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &terminal) == 0 && terminal.ws_col > 0;
    const std::size_t columns = isKnown ? terminal.ws_col - 1u : 80;
    const std::string text = std::to_string(done) + " of " + std::to_string(m_all) + ' ' + m_unit;
    const std::size_t taken = text.size() + kBrackets;
    const std::size_t width = columns > taken ? std::min(kWidest, columns - taken) : 0;
    const std::size_t filled = width * done / m_all;
    const std::string line = '[' + std::string(filled, '#') + std::string(width - filled, ' ') + "] " + text;
    std::fprintf(stderr, "\r%s", line.substr(0, columns).c_str());
}

}  // namespace tool
