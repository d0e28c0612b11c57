#include "qellib10/file/q_file.h"

#include <string_view>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/shell/module.h"
#include "qellib10/platform/shell/special_folder.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/temporary_name.h"
#include "qellib10/runtime/system_info.h"

namespace {

CString Found(const char* operation, const CString& path, std::string_view otherwise) {
    qel::Operation(operation).Ended(!path.IsEmpty(), qel::FailureKind::kMissing, otherwise);
    return path;
}

CString PathOf(const char* operation, HINSTANCE module) {
    return Found(operation, qel::ModulePath(module), "no module has this address");
}

CString PathOf(const char* operation, qel::SpecialFolder folder) {
    return Found(operation, qel::SpecialFolderPath(folder), "the user has no home folder");
}

}  // namespace

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

CString CQFile::GetModuleFilePath(HINSTANCE module) { return PathOf("CQFile::GetModuleFilePath", module); }

CString CQFile::GetModuleFolder(HINSTANCE module) {
    return GetFolderFromPath(PathOf("CQFile::GetModuleFolder", module));
}

CString CQFile::GetModuleIniFile(HINSTANCE module) {
    // Programs here have no extension, but folders such as app-1.2 have a dot: only the file's own name may be cut.
    const CString path = PathOf("CQFile::GetModuleIniFile", module);
    const CString name = GetFilenameFromPath(path);
    return path.Left(path.GetLength() - name.GetLength()) + DeleteFileExt(name) + ".ini";
}

CString CQFile::GetStartupFolder(int common) {
    const bool everybodys = common != 0 && CSystemInfo::IsWinNT();
    return PathOf("CQFile::GetStartupFolder",
                  everybodys ? qel::SpecialFolder::kCommonStartup : qel::SpecialFolder::kStartup);
}

CString CQFile::GetAppDataFolder() {
    const CString folder = PathOf("CQFile::GetAppDataFolder", qel::SpecialFolder::kAppData);
    if (folder.IsEmpty() || qel::NameStart(folder.View()) == folder.View().size()) return folder;
    return folder + '\\';
}
