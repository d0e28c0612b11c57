#include "demo/support/progress.h"

#include <qellib10/qellib10.h>

namespace titration {

ElapsedLine::ElapsedLine(std::string what, int descriptor, std::chrono::milliseconds after)
    : m_what(qel::PrintableText(what)), m_descriptor(descriptor) {
    if (::isatty(descriptor) == 1) m_thread = std::thread([this, after] { Show(after); });
}

ElapsedLine::~ElapsedLine() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard lock(m_mutex);
        m_isEnded = true;
    }
    m_ended.notify_one();
    m_thread.join();
}

void ElapsedLine::Show(std::chrono::milliseconds after) {
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock lock(m_mutex);
    if (m_ended.wait_for(lock, after, [this] { return m_isEnded; })) return;
    do {
        const auto passed = std::chrono::steady_clock::now() - start;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(passed).count();
        Write("\r" + m_what + ": " + std::to_string(seconds) + " s");
    } while (!m_ended.wait_for(lock, std::chrono::seconds(1), [this] { return m_isEnded; }));
    Write("\r\x1B[K");
}

// If the terminal is gone, the line ends, not the run.
void ElapsedLine::Write(const std::string& text) const {
    static_cast<void>(::write(m_descriptor, text.data(), text.size()) == 0);
}

}  // namespace titration
