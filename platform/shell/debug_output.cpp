#include "qellib10/platform/shell/debug_output.h"

#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

std::atomic<DebugOutputHook> theHook = nullptr;

bool LookForDebugger() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("TracerPid:")) return std::atol(line.c_str() + 10) != 0;
    }
    return false;
}

// Checked at most once a second, so that a log that writes all the time does not read a file for each line.
bool IsDebuggerAttached() {
    using Clock = std::chrono::steady_clock;
    static std::atomic<Clock::rep> lookedAt = 0;
    static std::atomic<bool> attached = false;
    const Clock::rep now = Clock::now().time_since_epoch().count();
    const Clock::rep last = lookedAt.load();
    if (last == 0 || now - last >= Clock::duration(std::chrono::seconds(1)).count()) {
        attached = LookForDebugger();
        lookedAt = now;
    }
    return attached;
}

}  // namespace

DebugOutputHook SetDebugOutputHook(DebugOutputHook hook) noexcept { return theHook.exchange(hook); }

}  // namespace qel

void OutputDebugStringA(const char* text) {
    if (text == nullptr) return;
    if (const qel::DebugOutputHook hook = qel::theHook.load()) return hook(text);
    const char* value = std::getenv("QELLIB10_DEBUG_OUTPUT");
    const std::string_view where = value != nullptr ? value : qel::IsDebuggerAttached() ? "stderr" : "none";
    if (where != "stderr" && where != "syslog") return;
    const std::string utf8 = qel::ToUtf8(text);
    if (where == "syslog") {
        ::syslog(LOG_DEBUG, "%s", utf8.c_str());
    } else if (::write(STDERR_FILENO, utf8.data(), utf8.size()) < 0) {
        return;  // nobody to report to
    }
}
