#pragma once

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/text/string.h"

/// A new folder that goes, with all that is in it, at the end of the scope. Names are as the disk has them (UTF-8).
class TempFolder {
public:
    TempFolder() : TempFolder(std::filesystem::temp_directory_path()) {}
    explicit TempFolder(const std::filesystem::path& below) {
        std::string pattern = (below / "qellib10-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_path = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// The folder, or a name within it, as the system takes it, and as the library does.
    std::filesystem::path Posix(const std::string& name = "") const { return name.empty() ? m_path : m_path / name; }
    CString Path(const std::string& name = "") const { return qel::ToLibraryPath(Posix(name).native()); }
    std::string Name(const std::string& name) const { return std::string(Path(name).View()); }

    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(Posix(name), std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(Posix(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool Has(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(Posix(name)));
    }
    dev_t Device() const {
        struct stat status = {};
        return ::stat(m_path.c_str(), &status) == 0 ? status.st_dev : 0;
    }
    int Count() const { return static_cast<int>(std::distance(std::filesystem::directory_iterator(m_path), {})); }

private:
    std::filesystem::path m_path;
};
