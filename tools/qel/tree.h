#pragma once

#include <set>
#include <string>
#include <vector>

namespace tool {

struct Tree {
    struct Other {
        std::string path;
        std::string kind;  // link, pipe, socket or device
    };
    std::vector<std::string> files;
    std::vector<Other> others;
    std::vector<std::string> unreadableFolders;
};

/// All regular files in a folder and its subfolders, by name, and what is no file there; links are not followed.
/// @param except subfolders that are left out
Tree FilesBelow(const std::string& folder, const std::set<std::string>& except = {});

/// The path of such a file from the folder on.
std::string NameBelow(const std::string& folder, const std::string& file);

}  // namespace tool
