#include "qellib10/platform/storage/make_folders.h"

#include <algorithm>

#include "qellib10/platform/operation.h"
#include "qellib10/platform/storage/folder_walk.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"

namespace qel {
namespace {

std::string_view After(std::string_view path, std::size_t at) { return path.substr(std::min(at + 1, path.size())); }

}  // namespace

FolderRoute::FolderRoute(std::string_view path) : names(path) {
    if (path.starts_with("\\\\")) {
        const std::size_t server = FindSeparator(path, 2);
        const std::size_t share = FindSeparator(path, std::min(server + 1, path.size()));
        start = path.substr(0, share);
        names = After(path, share);
        return;
    }
    const bool drive = NameStart(path.substr(0, 2)) == 2 && path[1] == ':';
    if (drive) names.remove_prefix(2);
    const bool root = !names.empty() && FindSeparator(names) == 0;
    if (root) names.remove_prefix(1);
    if (drive || root) start = std::string(path.substr(0, drive ? 2 : 0)) + '\\';
}

bool MakeFolders(FolderWalk& walk, std::string_view names) {
    while (!names.empty()) {
        const std::size_t end = FindSeparator(names);
        const std::string_view name = names.substr(0, end);
        if (!walk.Enter(name) && !(walk.Create(name) && walk.Enter(name))) return false;
        names = After(names, end);
    }
    return true;
}

void MakeFolders(std::string_view path) {
    const FolderRoute route(path);
    FolderWalk walk(route.start);
    Operation operation("qel::MakeFolders");
    operation.Ended(MakeFolders(walk, route.names));
}

}  // namespace qel
