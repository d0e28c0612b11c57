#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

/// The exit code of a shell command, a blank, and what it writes to either output.
inline std::string ResultOf(const std::string& command) {
    FILE* pipe = ::popen(("{ " + command + "; } 2>&1").c_str(), "r");
    std::string text;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
    return std::to_string(WEXITSTATUS(::pclose(pipe))) + " " + text;
}
