#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <utility>

#include "soak.h"

/// A forked child that runs a body and exits with its result; killed at the latest when the object goes.
class ChildProcess {
public:
    explicit ChildProcess(const std::function<int()>& body) : m_id(::fork()) {
        if (m_id != 0) return;
        int result = 99;
        try {
            result = body();
        } catch (...) {  // a child must never run on into the tests
        }
        ::_exit(result);
    }
    ~ChildProcess() { Kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t Id() const { return m_id; }

    /// Whether it has ended by itself; Wait reports how.
    bool HasEnded() const {
        siginfo_t info = {};
        return ::waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
    }

    /// Waits for its end. @return its result; 99 when it threw, -1 when it was killed
    int Wait() {
        int status = 0;
        if (::waitpid(std::exchange(m_id, 0), &status, 0) < 0) return -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void Kill() {
        if (m_id == 0) return;
        ::kill(m_id, SIGKILL);
        Wait();
        Tried("kills");
    }

private:
    pid_t m_id;
};

/// The result of @p body in a process of its own.
inline int InChild(const std::function<int()>& body) { return ChildProcess(body).Wait(); }

/// Whether all assertions of @p body, in a process of its own, hold.
inline bool HoldsInChild(const std::function<void()>& body) {
    return InChild([&] { return body(), testing::Test::HasFailure() ? 1 : 0; }) == 0;
}
