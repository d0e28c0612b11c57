#include "folders.h"

#include <filesystem>

namespace tool {

namespace fs = std::filesystem;

std::string AbsolutePath(const std::string& path) {
    fs::path absolute;
    for (const fs::path& each : fs::absolute(path))
        if (each != "." && !each.empty()) absolute /= each;
    return absolute.string();
}

std::string Below(const std::string& folder) { return folder.ends_with('/') ? folder : folder + '/'; }

std::string NearestFolder(const std::set<std::string>& folders, const std::string& file) {
    for (fs::path at = file; at.has_relative_path();) {
        at = at.parent_path();
        if (folders.contains(at.string())) return at.string();
    }
    return "";
}

}  // namespace tool
