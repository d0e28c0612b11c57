#pragma once

#include <string>
#include <vector>

namespace tool {

struct Tree {
    std::vector<std::string> files;
    std::vector<std::string> unreadableFolders;
};

/// All regular files in a folder and its subfolders, by name; links are not followed.
Tree FilesBelow(const std::string& folder);

/// The path of such a file from the folder on.
std::string NameBelow(const std::string& folder, const std::string& file);

}  // namespace tool
