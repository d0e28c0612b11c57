#include "qellib10/file/q_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/shell/module.h"
#include "qellib10/platform/shell/special_folder.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/temporary_name.h"
#include "qellib10/runtime/system_info.h"

CString CQFile::GetTempFolder() { return qel::TemporaryFolder(); }

CString CQFile::GetTempFilePath(const char* prefix) {
    CString name;
    qel::Succeeds("CQFile::GetTempFilePath", [&] { name = GetTempFilename(GetTempFolder(), prefix); });
    return name;
}

CString CQFile::GetTempFilename(const char* folder, const char* prefix) {
    CString name;
    qel::Succeeds("CQFile::GetTempFilename",
                  [&] { name = qel::TemporaryName(CString(folder).View(), CString(prefix).View()); });
    return name;
}

int CQFile::GetCurrentDirectoryA(CString& out) {
    return qel::Succeeds("CQFile::GetCurrentDirectoryA", [&] { out = qel::CurrentFolder(); });
}

CString CQFile::GetModuleFilePath(HINSTANCE module) { return qel::ModulePath(module); }

CString CQFile::GetModuleFolder(HINSTANCE module) { return GetFolderFromPath(GetModuleFilePath(module)); }

CString CQFile::GetModuleIniFile(HINSTANCE module) {
    // Programs here have no extension, but folders such as app-1.2 have a dot: only the file's own name may be cut.
    const CString path = GetModuleFilePath(module);
    const CString name = GetFilenameFromPath(path);
    return path.Left(path.GetLength() - name.GetLength()) + DeleteFileExt(name) + ".ini";
}

CString CQFile::GetStartupFolder(int common) {
    const bool everybodys = common != 0 && CSystemInfo::IsWinNT();
    return qel::SpecialFolderPath(everybodys ? qel::SpecialFolder::kCommonStartup : qel::SpecialFolder::kStartup);
}

CString CQFile::GetAppDataFolder() {
    const CString folder = qel::SpecialFolderPath(qel::SpecialFolder::kAppData);
    if (folder.IsEmpty() || qel::NameStart(folder.View()) == folder.View().size()) return folder;
    return folder + '\\';
}
