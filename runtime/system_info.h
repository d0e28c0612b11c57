#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/shell/special_folder.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// What the system is and how it is set up: for support pages, and for code that serves both families of it. Safe from
/// any thread, as long as none changes the environment.
class QELLIB10_API CSystemInfo {
public:
    virtual ~CSystemInfo();

    /// 1 on systems of the NT family, as this one counts.
    static BOOL IsWinNT();
    /// 1 on version 4.0 of the other family.
    static BOOL IsWin95();
    /// 1 when the kernel's version is @p major . @p minor or later, as 6.1.
    static BOOL IsSystemVersion(int major, int minor);
    /// The kernel's version; zeros where the system names none.
    static void GetSystemVersion(int* major, int* minor);
    /// The system's own name for itself with its version, as os-release(5) has it, or the kernel's name.
    static CString GetSystemName();

    /// The machine's folder for what belongs to no application, see qel::WindowsFolder.
    static CString GetWindowsDirectoryA();
    /// A folder that the desktop gives a meaning, see qel::SpecialFolderPath; the empty text for numbers not listed
    /// there.
    static CString GetSpecialFolder(qel::SpecialFolder folder);

    /// 1 when browsers are to use a proxy: http_proxy, https_proxy or all_proxy of the environment, small or in
    /// capitals. @p server then is its address, @p bypass the hosts of no_proxy, separated by commas. 0 otherwise, and
    /// both are empty.
    static BOOL GetBrowserProxy(CString& server, CString& bypass);
    /// 1 while a dial-up connection (interface ppp* or wwan*) is up.
    static BOOL IsDialUpConnected();

    /// 1 when the process runs with all rights: its effective user is root.
    static BOOL IsAdministrator();
    /// Shuts all programs down and starts the machine anew, by shutdown(8). 0 when the user may not or there is no such
    /// program; 1 when the restart has begun: programs are being asked to end while this returns.
    static BOOL Restart();
};

namespace qel {

enum class SystemFamily { Nt, Win95 };

/// Makes CSystemInfo answer as on another system, so that tests reach the code for it.
QELLIB10_API void SetSystemFamily(SystemFamily family);

}  // namespace qel
