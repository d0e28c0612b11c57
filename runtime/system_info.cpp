#include "qellib10/runtime/system_info.h"

#include <atomic>
#include <utility>

#include "qellib10/platform/operation.h"
#include "qellib10/platform/shell/system_state.h"
#include "qellib10/platform/storage/windows_folder.h"
#include "qellib10/platform/text/code_page.h"

namespace {

std::atomic<qel::SystemFamily> systemFamily{qel::SystemFamily::Nt};

}  // namespace

CSystemInfo::~CSystemInfo() = default;

BOOL CSystemInfo::IsWinNT() { return systemFamily == qel::SystemFamily::Nt; }
BOOL CSystemInfo::IsWin95() { return systemFamily == qel::SystemFamily::Win95; }

BOOL CSystemInfo::IsSystemVersion(int major, int minor) {
    const qel::SystemVersion version = qel::RunningSystemVersion();
    return std::pair(version.major, version.minor) >= std::pair(major, minor);
}

void CSystemInfo::GetSystemVersion(int* major, int* minor) {
    const qel::SystemVersion version = qel::RunningSystemVersion();
    if (major != nullptr) *major = version.major;
    if (minor != nullptr) *minor = version.minor;
}

CString CSystemInfo::GetSystemName() { return qel::FromUtf8(qel::SystemName()).c_str(); }

CString CSystemInfo::GetWindowsDirectoryA() { return qel::WindowsFolder(); }
CString CSystemInfo::GetSpecialFolder(qel::SpecialFolder folder) { return qel::SpecialFolderPath(folder); }

BOOL CSystemInfo::GetBrowserProxy(CString& server, CString& bypass) {
    const qel::ProxySettings proxy = qel::ProxyOfEnvironment();
    const bool isSet = !proxy.server.empty();
    server = isSet ? proxy.server.c_str() : "";
    bypass = isSet ? proxy.bypass.c_str() : "";
    return isSet;
}

BOOL CSystemInfo::IsDialUpConnected() { return qel::IsDialUpConnected(); }
BOOL CSystemInfo::IsAdministrator() { return qel::IsAdministrator(); }
BOOL CSystemInfo::Restart() {
    return qel::Operation("CSystemInfo::Restart")
        .Ended(qel::RunCommand({"shutdown", "-r", "now"}), qel::FailureKind::kRefused,
               "the system did not start shutdown");
}

void qel::SetSystemFamily(SystemFamily family) { systemFamily = family; }
