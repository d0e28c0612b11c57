#include "qellib10/platform/registry/registry_location.h"

#include <cstdlib>

#include "qellib10/platform/shell/special_folder.h"
#include "qellib10/platform/storage/windows_folder.h"

namespace qel {
namespace {

std::string FolderOf(RegistryRoot root) {
    const char* all = std::getenv("QELLIB10_REGISTRY_DIR");
    if (all != nullptr && all[0] == '/') return all;
    if (root != RegistryRoot::CurrentUser) return PosixWindowsFolder();
    const std::string config = PosixSpecialFolder(SpecialFolder::kAppData);
    return config.empty() ? config : config + "/qellib10";
}

}  // namespace

std::string RegistryDatabase(RegistryRoot root) {
    constexpr const char* kNames[kRegistryRoots] = {"/classes-root.db", "/current-user.db", "/local-machine.db"};
    const std::string folder = FolderOf(root);
    return folder.empty() ? folder : folder + kNames[static_cast<int>(root)];
}

}  // namespace qel
