// A result file is written, sealed, and found changed; settings and the log are used next to it.
#include <qellib10/qellib10.h>

#include <cstdio>

namespace {

// Opens for reading and writing; nobody else may write meanwhile.
constexpr UINT kForChange = CFile::modeReadWrite | CFile::shareDenyWrite;

CString Check(const char* path) {
    CQFile file;
    CCheckDatafile seal;
    if (!file.Open(path, CFile::modeRead | CFile::shareDenyWrite)) return "cannot be opened";
    if (!CCheckDatafile::IsPackData(&file)) return "not sealed, or changed";
    if (!seal.ReadPackData(&file)) return "sealed under the name " + seal.GetFilename();
    CString text;
    text.Format("sealed, version %d", seal.GetVersion());
    return text;
}

bool Write(const char* path, const char* text, UINT flags, int at) try {
    CQFile file;
    if (!file.Open(path, flags)) return false;
    file.Seek(at, CFile::begin);
    file.Write(text, static_cast<UINT>(CString(text).GetLength()));
    CCheckDatafile seal;
    return seal.PackUpdateData(&file, 1) != 0;
} catch (const CFileException& failure) {
    std::printf("%s\n", failure.what());
    return false;
}

}  // namespace

int main() {
    const CString folder = CQFile::BuildFilePath("data", "2026");
    const CString path = CQFile::BuildFilePath(folder, "sample7.dat");
    if (!CQFile::CreateDirectories(folder)) return 1;

    CPrivateProfile settings(".\\meter.ini");  // without a folder in its name it would be the machine's
    settings.Set("Log", "Level", 2);
    settings.Set("Log", "File", "meter.log");
    CLog::SetLogLevel(settings.Get("Log", "Level", 0));
    CLog::SetLogFile(settings.Get("Log", "File", ""));
    if (const qel::LogState log = qel::CanLog(); !log) std::puts("no log: " + log.reason);

    if (!Write(path, "EP 16.519 mL\r\n", CFile::modeCreate | kForChange, 0)) return 1;
    CLog::LogOut(1, "sealed " + path);
    CLog::LogOut(3, "too detailed for level 2");
    std::puts(path + ": " + Check(path));

    const CString copy = CQFile::BuildFilePath(folder, "sample8.dat");
    qel::CopyFile(path.View(), copy.View(), true);
    std::puts(copy + ": " + Check(copy));

    CQFile file;
    if (!file.Open(path, kForChange)) return 1;
    file.Seek(3, CFile::begin);
    file.Write("99", 2);
    file.Close();
    std::puts(path + ": " + Check(path));

    DWORD size = 0;
    CQFile::GetFileSize("meter.log", &size);
    std::printf("log: %u bytes\n", size);
    return CQFile::DelTree("data") ? 0 : 1;
}
