#include "qellib10/platform/shell/system_state.h"

#include <spawn.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string_view>
#include <system_error>

namespace qel {
namespace {

std::string FirstSet(std::initializer_list<const char*> variables) {
    for (const char* const variable : variables) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && value[0] != '\0') return value;
    }
    return "";
}

// The value of a line NAME=value, NAME="value" or NAME='value'; \ keeps the character after it.
std::string Unquoted(std::string_view value) {
    const bool isQuoted = value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0];
    if (isQuoted) value = value.substr(1, value.size() - 2);
    std::string text;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] == '\\' && at + 1 < value.size()) ++at;
        text += value[at];
    }
    return text;
}

// "down" means that an interface has no connection; connected point-to-point ones say "unknown".
bool IsUp(const std::filesystem::path& interface) {
    std::string state;
    std::ifstream(interface / "operstate") >> state;
    return state == "up" || state == "unknown";
}

}  // namespace

SystemVersion RunningSystemVersion() {
    utsname system = {};
    if (::uname(&system) != 0) return {};
    const std::string_view release = system.release;
    const char* const end = release.data() + release.size();
    SystemVersion version;
    const auto [dot, error] = std::from_chars(release.data(), end, version.major);
    if (error != std::errc() || dot == end || *dot != '.') return version;
    std::from_chars(dot + 1, end, version.minor);
    return version;
}

std::string SystemName() {
    for (const char* const path : {"/etc/os-release", "/usr/lib/os-release"}) {
        constexpr std::string_view kName = "PRETTY_NAME=";
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(kName)) return Unquoted(std::string_view(line).substr(kName.size()));
        }
    }
    utsname system = {};
    return ::uname(&system) == 0 ? system.sysname : "";
}

ProxySettings ProxyOfEnvironment() {
    return {FirstSet({"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}),
            FirstSet({"no_proxy", "NO_PROXY"})};
}

bool IsDialUpConnected(const std::string& interfaces) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(interfaces, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        if ((name.starts_with("ppp") || name.starts_with("wwan")) && IsUp(entry->path())) return true;
    }
    return false;
}

bool IsAdministrator() { return ::geteuid() == 0; }

bool RunCommand(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (command.empty() || ::posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
        return false;
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace qel
