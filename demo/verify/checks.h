#pragma once

#include <cstdio>
#include <set>
#include <string>

#include <qellib10/qellib10.h>

#include "demo/support/failure.h"
#include "demo/support/file_step.h"
#include "demo/support/progress.h"

namespace titration {

/// Runs checks and shows each as one line: "ok" with what was found, or "FAILED" with what is wrong.
class Checks {
public:
    /// @param what a file's name, if the check is about one
    /// @param check returns what it found, or throws Failure
    template <class Check> void Run(const std::string& what, Check check) {
        ++m_count;
        m_done.insert(what);
        try {
            std::printf("ok      %s: %s\n", what.c_str(), qel::PrintableText(Found(what, check)).c_str());
        } catch (const Failure& failure) {
            ++m_failed;
            std::printf("FAILED: %s: %s\n", what.c_str(), WithoutName(failure.what(), what + ": ").c_str());
        }
    }

    bool HasRun(const std::string& what) const { return m_done.contains(what); }
    int Count() const { return m_count; }
    int Failed() const { return m_failed; }

private:
    // The line of progress is removed before the check is shown.
    template <class Check> static std::string Found(const std::string& what, Check& check) {
        const ElapsedLine progress("Checking " + what);
        return check();
    }

    // Readers of a file put its name and folder into the message.
    static std::string WithoutName(std::string message, const std::string& name) {
        const std::size_t at = message.find(name);
        return at == std::string::npos ? message : message.substr(at + name.size());
    }

    std::set<std::string> m_done;
    int m_count = 0, m_failed = 0;
};

/// @throws Failure with the reason, or with @p otherwise if there is none, when the library's operation returned 0
inline void RequireDone(int result, const char* otherwise) {
    if (result == 0) throw Failure(Why(otherwise));
}

/// @throws Failure with @p message unless @p isRight
inline void Require(bool isRight, const std::string& message) {
    if (!isRight) throw Failure(message);
}

}  // namespace titration
