#pragma once

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace titration {

/// A line on a terminal for a long run: what is being done and for how many seconds, once a second. The line is removed
/// at the end of the scope. Nothing is written if the descriptor is not a terminal, and before @p after.
class ElapsedLine {
public:
    explicit ElapsedLine(std::string what, int descriptor = STDERR_FILENO,
                         std::chrono::milliseconds after = std::chrono::seconds(2));
    ~ElapsedLine();
    ElapsedLine(const ElapsedLine&) = delete;
    ElapsedLine& operator=(const ElapsedLine&) = delete;

private:
    void Show(std::chrono::milliseconds after);
    void Write(const std::string& text) const;

    const std::string m_what;
    const int m_descriptor;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_isEnded = false;
    std::thread m_thread;
};

}  // namespace titration
