#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>

/// What a shell command writes to its standard output.
inline std::string OutputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    std::array<char, 4096> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe.get()))
        output.append(block.data(), count);
    return output;
}
