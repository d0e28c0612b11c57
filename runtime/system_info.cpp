#include "qellib10/runtime/system_info.h"

#include <atomic>

#include "qellib10/platform/storage/windows_folder.h"

namespace {

std::atomic<qel::SystemFamily> systemFamily{qel::SystemFamily::Nt};

}  // namespace

CSystemInfo::~CSystemInfo() = default;

BOOL CSystemInfo::IsWinNT() { return systemFamily == qel::SystemFamily::Nt; }
BOOL CSystemInfo::IsWin95() { return systemFamily == qel::SystemFamily::Win95; }
CString CSystemInfo::GetWindowsDirectoryA() { return qel::WindowsFolder(); }

void qel::SetSystemFamily(SystemFamily family) { systemFamily = family; }
