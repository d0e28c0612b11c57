#include "qellib10/platform/shell/special_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
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

std::string Home() {
    const std::string home = AbsoluteOf("HOME");
    return home.empty() ? HomeOfAccount() : home;
}

std::string Below(const std::string& folder, std::string_view rest) {
    return folder.empty() ? folder : folder + std::string(rest);
}

std::string UserFolder(const char* variable, std::string_view belowHome) {
    const std::string folder = AbsoluteOf(variable);
    return folder.empty() ? Below(Home(), belowHome) : folder;
}

std::string ConfigHome() { return UserFolder("XDG_CONFIG_HOME", "/.config"); }

std::string FirstFolderIn(const char* variable, const char* fallback) {
    const char* value = std::getenv(variable);
    std::string_view folders = value != nullptr ? value : "";
    while (!folders.empty()) {
        const std::string_view first = folders.substr(0, folders.find(':'));
        if (first.starts_with('/')) return std::string(first.substr(0, first.find_last_not_of('/') + 1));
        folders.remove_prefix(std::min(first.size() + 1, folders.size()));
    }
    return fallback;
}

// The user's choice is in a line XDG_DESKTOP_DIR="$HOME/Schreibtisch", or with an absolute path.
std::string ChosenFolder(std::string_view name, std::string_view belowHome) {
    const std::string begin = std::string(name) + "=\"";
    std::ifstream choices(ConfigHome() + "/user-dirs.dirs");
    for (std::string line; std::getline(choices, line);) {
        if (!line.starts_with(begin) || !line.ends_with('"') || line.size() == begin.size()) continue;
        const std::string folder = line.substr(begin.size(), line.size() - begin.size() - 1);
        if (folder.starts_with('/')) return folder;
        if (folder.starts_with("$HOME/")) return Below(Home(), folder.substr(5));
    }
    return Below(Home(), belowHome);
}

}  // namespace

std::string PosixSpecialFolder(SpecialFolder folder) {
    switch (folder) {
        case SpecialFolder::kPrograms:
            return Below(UserFolder("XDG_DATA_HOME", "/.local/share"), "/applications");
        case SpecialFolder::kPersonal:
            return ChosenFolder("XDG_DOCUMENTS_DIR", "/Documents");
        case SpecialFolder::kStartup:
            return Below(ConfigHome(), "/autostart");
        case SpecialFolder::kDesktop:
            return ChosenFolder("XDG_DESKTOP_DIR", "/Desktop");
        case SpecialFolder::kCommonPrograms:
            return FirstFolderIn("XDG_DATA_DIRS", "/usr/local/share") + "/applications";
        case SpecialFolder::kCommonStartup:
            return FirstFolderIn("XDG_CONFIG_DIRS", "/etc/xdg") + "/autostart";
        case SpecialFolder::kAppData:
            return ConfigHome();
    }
    return "";
}

CString SpecialFolderPath(SpecialFolder folder) { return ToLibraryPath(PosixSpecialFolder(folder)); }

}  // namespace qel
