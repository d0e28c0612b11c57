#include "tree.h"

#include <algorithm>
#include <filesystem>

namespace tool {
namespace {

namespace fs = std::filesystem;

void Collect(const fs::path& folder, Tree& tree) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) entries.push_back(*entry);
    if (error) tree.unreadableFolders.push_back(folder.string());
    std::ranges::sort(entries);
    for (const fs::directory_entry& each : entries) {
        std::error_code gone;
        const fs::file_type type = each.symlink_status(gone).type();
        if (type == fs::file_type::directory) Collect(each.path(), tree);
        if (type == fs::file_type::regular) tree.files.push_back(each.path().string());
    }
}

}  // namespace

Tree FilesBelow(const std::string& folder) {
    Tree tree;
    Collect(folder, tree);
    return tree;
}

std::string NameBelow(const std::string& folder, const std::string& file) {
    const fs::path from = (fs::path(folder) / "").lexically_normal().parent_path();
    return fs::path(file).lexically_normal().lexically_relative(from).string();
}

}  // namespace tool
