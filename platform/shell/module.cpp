#include "qellib10/platform/shell/module.h"

#include <dlfcn.h>
#include <linux/limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/path.h"

namespace qel {
namespace {

// The kernel marks the file of a running module that was deleted, or replaced by a rename.
std::string WithoutMark(std::string path) {
    constexpr std::string_view kMark = " (deleted)";
    struct stat status = {};
    const bool marked = path.ends_with(kMark) && ::stat(path.c_str(), &status) != 0;
    if (marked) path.resize(path.size() - kMark.size());
    return path;
}

std::string PathOfProgram() {
    std::string path(PATH_MAX, '\0');
    const ssize_t size = ::readlink("/proc/self/exe", path.data(), path.size());
    path.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return WithoutMark(path);
}

// A line of the memory map: `7f00-7f10 r-xp 00001000 08:01 1234      /usr/lib/libx.so`; a line end in the path is \012.
// @return nothing if the line does not contain @p address, an empty text if no file is mapped there
std::optional<std::string> PathInLine(const std::string& line, std::uintptr_t address) {
    char* end = nullptr;
    const std::uintptr_t first = std::strtoull(line.c_str(), &end, 16);
    if (*end != '-') return std::nullopt;
    const std::uintptr_t past = std::strtoull(end + 1, nullptr, 16);
    if (address < first || address >= past) return std::nullopt;
    const std::size_t slash = line.find('/');
    if (slash == std::string_view::npos) return "";
    std::string path = line.substr(slash);
    for (std::size_t at = path.find("\\012"); at != std::string_view::npos; at = path.find("\\012", at))
        path.replace(at, 4, 1, '\n');
    return path;
}

// The loader knows which module contains an address, but its path only as it was loaded, which may be relative to a
// folder that is no longer current. The kernel's list has the absolute path.
std::string PathOfAddress(const void* module) {
    Dl_info info = {};
    if (::dladdr(module, &info) == 0) return "";
    std::ifstream map("/proc/self/maps");
    for (std::string line; std::getline(map, line);) {
        const auto path = PathInLine(line, reinterpret_cast<std::uintptr_t>(info.dli_fbase));
        if (path) return WithoutMark(*path);
    }
    return "";
}

}  // namespace

CString ModulePath(HINSTANCE module) {
    return ToLibraryPath(module == nullptr ? PathOfProgram() : PathOfAddress(module));
}

}  // namespace qel
