#include "qellib10/platform/shell/special_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/storage/path.h"

namespace qel {
namespace {

std::string AbsoluteOf(const char* variable) {
    const char* value = std::getenv(variable);
    if (value == nullptr || value[0] != '/') return "";
    return value;
}

std::string HomeOfAccount() {
    const long hint = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(hint > 0 ? static_cast<std::size_t>(hint) : 16384);
    passwd entry = {};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return "";
    return found->pw_dir != nullptr && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

std::string ConfigHome() {
    if (std::string folder = AbsoluteOf("XDG_CONFIG_HOME"); !folder.empty()) return folder;
    std::string home = AbsoluteOf("HOME");
    if (home.empty()) home = HomeOfAccount();
    return home.empty() ? home : home + "/.config";
}

std::string FirstOfConfigDirs() {
    const char* value = std::getenv("XDG_CONFIG_DIRS");
    std::string_view folders = value != nullptr ? value : "";
    while (!folders.empty()) {
        const std::string_view first = folders.substr(0, folders.find(':'));
        if (first.starts_with('/')) return std::string(first);
        folders.remove_prefix(std::min(first.size() + 1, folders.size()));
    }
    return "/etc/xdg";
}

}  // namespace

std::string PosixSpecialFolder(SpecialFolder folder) {
    if (folder == SpecialFolder::kCommonStartup) return FirstOfConfigDirs() + "/autostart";
    const std::string config = ConfigHome();
    if (config.empty() || folder == SpecialFolder::kAppData) return config;
    return folder == SpecialFolder::kStartup ? config + "/autostart" : "";
}

CString SpecialFolderPath(SpecialFolder folder) { return ToLibraryPath(PosixSpecialFolder(folder)); }

}  // namespace qel
