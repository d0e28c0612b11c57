#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/shell/special_folder.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// The system's version and settings: for support pages, and for code that runs on both families of the system. A
/// folder or a version that is written into a program is right on the developer's machine and wrong on the customer's.
///
/// @code
/// int major = 0, minor = 0;
/// CSystemInfo::GetSystemVersion(&major, &minor);
/// std::printf("%s, kernel %d.%d\n", CSystemInfo::GetSystemName().GetString(), major, minor);
/// const CString folder = CSystemInfo::GetSpecialFolder(qel::SpecialFolder::kAppData);
/// if (folder.IsEmpty()) return;  // the user has no home folder
/// @endcode
///
/// An int is 1 for yes and 0 for no. What the system does not say is 0 or an empty text. Safe from any thread, as long
/// as no thread changes the environment.
class QELLIB10_API CSystemInfo {
public:
    virtual ~CSystemInfo();

    /// 1 on systems of the NT family; this system counts as one.
    static BOOL IsWinNT();
    /// 1 on version 4.0 of the other family.
    static BOOL IsWin95();
    /// 1 if the kernel's version is @p major . @p minor or later, for example 6.1.
    static BOOL IsSystemVersion(int major, int minor);
    /// The kernel's version; zeros if the system gives none.
    static void GetSystemVersion(int* major, int* minor);
    /// The system's name with its version from os-release(5), or the kernel's name.
    static CString GetSystemName();

    /// The machine's folder for files that belong to no application, see qel::WindowsFolder.
    static CString GetWindowsDirectoryA();
    /// A folder with a meaning for the desktop, see qel::SpecialFolderPath; empty for other numbers.
    static CString GetSpecialFolder(qel::SpecialFolder folder);

    /// 1 if browsers use a proxy: http_proxy, https_proxy or all_proxy of the environment, in small or capital letters.
    /// @p server is then its address, @p bypass the hosts of no_proxy, separated by commas. 0 otherwise, and both are
    /// empty.
    static BOOL GetBrowserProxy(CString& server, CString& bypass);
    /// 1 while a dial-up connection (interface ppp* or wwan*) is up.
    static BOOL IsDialUpConnected();

    /// 1 if the process has all rights: its effective user is root.
    static BOOL IsAdministrator();
    /// Ends all programs and restarts the machine, with shutdown(8). 0 if the user may not or there is no such program;
    /// 1 once the restart has started: programs may still be ending when this returns.
    static BOOL Restart();
};

namespace qel {

enum class SystemFamily { Nt, Win95 };

/// Makes CSystemInfo return the values of another system, so that tests reach the code for it.
QELLIB10_API void SetSystemFamily(SystemFamily family);

}  // namespace qel
