#include "qellib10/file/restart_file.h"

#include <string>

#include "qellib10/file/private_profile.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/ini/ini_file.h"
#include "qellib10/platform/storage/make_folders.h"
#include "qellib10/runtime/system_info.h"

namespace qel {
namespace {

// The Windows folder, which exists on systems that have a restart file.
CString Folder() {
    const CString folder = CSystemInfo::GetWindowsDirectoryA();
    Succeeds([&] { MakeFolders(folder.View()); });  // a failure shows when the file is written
    return folder;
}

}  // namespace

bool AddMoveToRestartFile(const CString& source, const CString& target) {
    CPrivateProfile file(CQFile::BuildFilePath(Folder(), "WININIT.INI"), CPrivateProfile::iniMode);
    return file.Set("rename", target, source) != 0;
}

bool AddDeletionToRestartFile(const CString& name) {
    // All deletions have the same key, so a new one is not set but added after the others.
    constexpr const char* kSection = "Rename";
    const CString file = Folder() + "\\WinInit.ini";
    return AddProfileEntry(kSection, "Nul=" + std::string(name.View()), file);
}

}  // namespace qel
