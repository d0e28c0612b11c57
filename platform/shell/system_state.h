#pragma once

#include <string>
#include <vector>

namespace qel {

/// Kernel's version, from uname(2); zeros if it gives none.
struct SystemVersion {
    int major = 0;
    int minor = 0;
};
SystemVersion RunningSystemVersion();

/// PRETTY_NAME of os-release(5), in UTF-8; the kernel's name if there is none.
std::string SystemName();

/// The proxy from the environment, as browsers and other programs here use it.
struct ProxySettings {
    std::string server;  ///< http_proxy, https_proxy, all_proxy (or in capitals): the first that is set, else empty
    std::string bypass;  ///< no_proxy (or in capitals): hosts without proxy, separated by commas
};
ProxySettings ProxyOfEnvironment();

/// Whether a dial-up connection (a point-to-point or mobile broadband interface: ppp*, wwan*) is up.
bool IsDialUpConnected(const std::string& interfaces = "/sys/class/net");

/// Whether the process has all rights: its effective user is root.
bool IsAdministrator();

/// Runs the program, which is searched in PATH, and waits until it ends. @return whether it was found and returned 0
bool RunCommand(const std::vector<std::string>& command);

}  // namespace qel
