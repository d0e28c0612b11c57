#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// What the system is, for code that serves both families of it. Safe from any thread.
class QELLIB10_API CSystemInfo {
public:
    virtual ~CSystemInfo();

    /// 1 on systems of the NT family, as this one counts.
    static BOOL IsWinNT();
    /// 1 on version 4.0 of the other family.
    static BOOL IsWin95();
    /// The machine's folder for what belongs to no application, see qel::WindowsFolder.
    static CString GetWindowsDirectoryA();
};

namespace qel {

enum class SystemFamily { Nt, Win95 };

/// Makes CSystemInfo answer as on another system, so that tests reach the code for it.
QELLIB10_API void SetSystemFamily(SystemFamily family);

}  // namespace qel
