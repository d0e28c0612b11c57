#include "tree.h"

#include <algorithm>
#include <filesystem>

namespace tool {
namespace {

namespace fs = std::filesystem;

const char* KindOf(fs::file_type type) {
    switch (type) {
        case fs::file_type::symlink:
            return "link";
        case fs::file_type::fifo:
            return "pipe";
        case fs::file_type::socket:
            return "socket";
        default:
            return "device";
    }
}

void Collect(const fs::path& folder, const std::set<std::string>& except, Tree& tree) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) entries.push_back(*entry);
    if (error) tree.unreadableFolders.push_back(folder.string());
    std::ranges::sort(entries);
    for (const fs::directory_entry& each : entries) {
        std::error_code gone;
        const fs::file_type type = each.symlink_status(gone).type();
        const std::string path = each.path().string();
        if (type == fs::file_type::directory) {
            if (!except.contains(path)) Collect(each.path(), except, tree);
        } else if (type == fs::file_type::regular) {
            tree.files.push_back(path);
        } else if (type != fs::file_type::not_found) {  // somebody has removed it
            tree.others.push_back({path, KindOf(type)});
        }
    }
}

}  // namespace

Tree FilesBelow(const std::string& folder, const std::set<std::string>& except) {
    Tree tree;
    Collect(folder, except, tree);
    return tree;
}

std::string NameBelow(const std::string& folder, const std::string& file) {
    const fs::path from = (fs::path(folder) / "").lexically_normal().parent_path();
    return fs::path(file).lexically_normal().lexically_relative(from).string();
}

}  // namespace tool
