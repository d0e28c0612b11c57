#pragma once

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>

/// A new folder that goes, with all that is in it, at the end of the scope.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qellib10-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_path = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// A name within the folder, as the library takes it, and as the system does.
    std::string Name(const std::string& name) const {
        std::string path = Posix(name).string();
        std::replace(path.begin(), path.end(), '/', '\\');
        return path;
    }
    std::filesystem::path Posix(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};
