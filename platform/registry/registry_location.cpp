#include "qellib10/platform/registry/registry_location.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/windows_folder.h"

namespace qel {
namespace {

// The variable's value when it is an absolute path, else the empty text.
std::string FolderIn(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && value[0] == '/' ? value : "";
}

std::string HomeFolder() {
    if (std::string home = FolderIn("HOME"); !home.empty()) return home;
    passwd entry = {};
    passwd* found = nullptr;
    std::vector<char> buffer(16 * 1024);
    ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return found != nullptr && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

std::string UserFolder() {
    if (const std::string folder = FolderIn("XDG_CONFIG_HOME"); !folder.empty()) return folder + "/qellib10";
    const std::string home = HomeFolder();
    return home.empty() ? home : home + "/.config/qellib10";
}

std::string FolderOf(RegistryRoot root) {
    if (std::string folder = FolderIn("QELLIB10_REGISTRY_DIR"); !folder.empty()) return folder;
    return root == RegistryRoot::CurrentUser ? UserFolder() : ToPosixPath(WindowsFolder().View());
}

}  // namespace

std::string RegistryDatabase(RegistryRoot root) {
    constexpr const char* kNames[kRegistryRoots] = {"/classes-root.db", "/current-user.db", "/local-machine.db"};
    const std::string folder = FolderOf(root);
    return folder.empty() ? folder : folder + kNames[static_cast<int>(root)];
}

}  // namespace qel
