#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/text/string.h"

/// A file in memory, so that no disk is measured; it is deleted with the object.
class MemoryFile {
public:
    MemoryFile() : m_path("/dev/shm/qellib10-bench-" + std::to_string(std::random_device()())) {}
    ~MemoryFile() { std::filesystem::remove(m_path); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const char* Posix() const { return m_path.c_str(); }
    CString Name() const { return qel::ToLibraryPath(m_path.native()); }
    std::string Read() const {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};
