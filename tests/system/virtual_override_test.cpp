#include <gtest/gtest.h>

#include <string>

#include "../support/temp_folder.h"
#include "qellib10/qellib10.h"

// An application's override has the documented signature, without const. One that differs from the library's compiles
// as a function of its own when it is written without `override`, and nobody ever calls it.
namespace {

std::string called;
int Note(const char* name) {
    called += std::string(name) + ' ';
    return 0;
}

struct Security : CFunctionSecurity {
    void InitializeFunctionInfo() override { Note("InitializeFunctionInfo"); }
    int GetMachineID() override { return Note("GetMachineID"); }
    CString GetMachineName() override { return Note("GetMachineName") == 0 ? "model" : ""; }
    void SetFunctionParameter() override { Note("SetFunctionParameter"); }
    void SetMakerParameter(int maker) override { CFunctionSecurity::SetMakerParameter(maker + Note("SetMaker")); }
    void SetManagerParameter(int) override { Note("SetManager"); }
};

struct Setting : CSystemSetting {
    using CSystemSetting::CSystemSetting;
    int IsAutoLogon() override { return Note("IsAutoLogon"); }
    int SetAutoLogon(int) override { return Note("SetAutoLogon"); }
    CString GetAutoLogonUserName() override { return Note("GetAutoLogonUserName") == 0 ? "ann" : ""; }
    CString GetAutoLogonPassword() override { return Note("GetAutoLogonPassword") == 0 ? "secret" : ""; }
    int SetAutoLogonUser(const CString&) override { return Note("SetAutoLogonUser"); }
    int SetLoginUserName(const char*) override { return Note("SetLoginUserName"); }
};

struct PlainDocument : CCryptXMLDocument {
    int SavePlain(const char* path) { return SavePlainXMLFile(path, 0); }
};

struct Document : PlainDocument {
    int LoadXMLFile(const char* path, int noWait) override {
        Note("LoadXMLFile");
        return CCryptXMLDocument::LoadXMLFile(path, noWait);
    }
    int SaveXMLFile(const char* path, int noWait) override {
        Note("SaveXMLFile");
        return CCryptXMLDocument::SaveXMLFile(path, noWait);
    }
    int LockFile(const char*, int, int) override { return Note("LockFile"); }
    int IsLocked() override { return Note("IsLocked"); }
    int LockCommit() override { return Note("LockCommit"); }
    int LockRollback() override { return Note("LockRollback"); }
    int LoadPlainXMLFile(const char*, int) override { return Note("LoadPlainXMLFile"); }
    int SavePlainXMLFile(const char*, int) override { return Note("SavePlainXMLFile"); }
};

struct Memory : CMemoryMappedFile {
    int Open(DWORD, const char*, DWORD) override { return Note("Open"); }
    void Close() override { Note("Close"); }
    void* GetDataPtr(DWORD, DWORD) override { return Note("GetDataPtr") == 0 ? nullptr : this; }
    void GetDataPtrUnmap() override { Note("GetDataPtrUnmap"); }
    int SetData(void*, DWORD, DWORD*) override { return Note("SetData"); }
};

struct Graph : CQelGraph {
    int InitializeParameter(int) override { return Note("InitializeParameter"); }
    int InitializeData(int) override { return Note("InitializeData"); }
    int AddData(int, double, double) override { return Note("AddData"); }
    void SetDrawSize(int, int) override { Note("SetDrawSize"); }
    int GraphDraw(CDC*, int, int) override { return Note("GraphDraw"); }
    int MarkDraw(CDC*, int, double, double, int, unsigned long, int, CRect*) override { return Note("MarkDraw"); }
    int FitLineDraw(CDC*, int, double, double, double, double, double, double, double, double, unsigned long,
                    int) override {
        return Note("FitLineDraw");
    }
    int FreeLineDraw(CDC*, int, double, double, double, double, unsigned long, int) override {
        return Note("FreeLineDraw");
    }
    int DrawCrossPoint(CDC*, int, double, double) override { return Note("DrawCrossPoint"); }
    int GetPrintJob(CQelPrintJobQueueData*, const CRect&, CDC*) override { return Note("GetPrintJob"); }
};

struct Binary : CQBinary {
    void Serialize(CArchive&) override { Note("Serialize"); }
};

template <class Kept> struct Archived : Kept {
    const CRuntimeClass* GetRuntimeClass() const override {
        return Note("GetRuntimeClass") == 0 ? nullptr : Kept::GetRuntimeClass();
    }
    void Serialize(CArchive&) override { Note("Serialize"); }
};

struct Agent : CClassAgentConnectInterface {
    void Connect() override { Note("Connect"); }
    int IsConnected() override { return Note("IsConnected"); }
    int Reserved4() override { return Note("4"); }
    int Reserved5() override { return Note("5"); }
    int Reserved6() override { return Note("6"); }
    int LogonWithDialog() override { return Note("LogonWithDialog"); }
    int Logon(const CString&, const CString&) override { return Note("Logon"); }
    int Reserved9() override { return Note("9"); }
    int Reserved10() override { return Note("10"); }
    void GetLogonUser(CUserInfo*) override { Note("GetLogonUser"); }
    CString GetLogonUsername() override { return Note("GetLogonUsername") == 0 ? "ann" : ""; }
    int Reserved13() override { return Note("13"); }
    int IsAutoLogon() override { return Note("IsAutoLogon"); }
    int SetAutoLogon(int) override { return Note("SetAutoLogon"); }
    CString GetAutoLogonUserName() override { return Note("GetAutoLogonUserName") == 0 ? "ann" : ""; }
    CString GetAutoLogonPassword() override { return Note("GetAutoLogonPassword") == 0 ? "secret" : ""; }
    int SetAutoLogonUser(const CString&) override { return Note("SetAutoLogonUser"); }
    int GetUserInfo(const CString&, CUserInfo*) override { return Note("GetUserInfo"); }
    int Reserved20() override { return Note("20"); }
    int Reserved21() override { return Note("21"); }
    int ReloadUserList() override { return Note("ReloadUserList"); }
    int GetUserCount() override { return Note("GetUserCount"); }
    CString GetUserName(int) override { return Note("GetUserName") == 0 ? "ann" : ""; }
    int SaveFunctionSecurity(const CUserInfo&) override { return Note("SaveFunctionSecurity"); }
    int AddUser(const CUserInfo&) override { return Note("AddUser"); }
    int Reserved27() override { return Note("27"); }
    int DeleteUser(const CString&) override { return Note("DeleteUser"); }
};

struct File : CQFile {
    BOOL Open(const char*, UINT, CFileException*) override { return Note("Open"); }
    void Close() override { Note("Close"); }
    void WriteFromFile(const char*, UINT, DWORD) override { Note("WriteFromFile"); }
    void ReadToFile(const char*, DWORD) override { Note("ReadToFile"); }
};

class VirtualOverride : public testing::Test {
protected:
    VirtualOverride() { called.clear(); }
};

}  // namespace

TEST_F(VirtualOverride, OfSecurityIsCalled) {
    Security own;
    CFunctionSecurity& security = own;
    security.Initialize();
    EXPECT_EQ(security.GetMachineID(), 0);
    EXPECT_STREQ(security.GetMachineName(), "model");
    security.SetMakerParameter(1);
    security.SetManagerParameter(1);
    EXPECT_EQ(called, "InitializeFunctionInfo GetMachineID GetMachineName SetMaker SetFunctionParameter SetManager ");
}

TEST_F(VirtualOverride, OfSettingIsCalled) {
    Setting own(nullptr);
    CSystemSetting& setting = own;
    EXPECT_EQ(setting.IsAutoLogon(), 0);
    EXPECT_EQ(setting.SetAutoLogon(1), 0);
    EXPECT_STREQ(setting.GetAutoLogonUserName(), "ann");
    EXPECT_STREQ(setting.GetAutoLogonPassword(), "secret");
    EXPECT_EQ(setting.SetAutoLogonUser("ann"), 0);
    setting.Logoff();
    EXPECT_EQ(called,
              "IsAutoLogon SetAutoLogon GetAutoLogonUserName GetAutoLogonPassword SetAutoLogonUser "
              "SetLoginUserName ");
}

TEST_F(VirtualOverride, OfDocumentIsCalled) {
    Document own;
    CCryptXMLDocument& document = own;
    document.SetCryptMode(0);
    const TempFolder folder;
    const CString path = folder.Path("none.xml");
    document.LoadXMLFile(path, 0);
    document.SaveXMLFile(path, 0);
    own.SavePlain(path);
    document.LockFile(path, 0, 0);
    document.IsLocked();
    document.LockCommit();
    document.LockRollback();
    EXPECT_EQ(called,
              "LoadXMLFile LoadPlainXMLFile SaveXMLFile SavePlainXMLFile LockFile IsLocked LockCommit LockRollback ");
}

TEST_F(VirtualOverride, OfMemoryIsCalled) {
    Memory own;
    CMemoryMappedFile& memory = own;
    memory.Open(6, "block", 16);
    memory.GetDataPtr(2, 16);
    memory.SetData(nullptr, 0, nullptr);
    memory.GetDataPtrUnmap();
    memory.Close();
    EXPECT_EQ(called, "Open GetDataPtr SetData GetDataPtrUnmap Close ");
}

TEST_F(VirtualOverride, OfGraphIsCalled) {
    Graph own;
    CQelGraph& graph = own;
    graph.InitializeParameter(0);
    graph.InitializeData(0);
    graph.AddData(0, 1, 2);
    graph.SetDrawSize(10, 10);
    graph.GraphDraw(nullptr, 0, 0);
    graph.MarkDraw(nullptr, 0, 0, 0, 0, 0, 0, nullptr);
    graph.FitLineDraw(nullptr, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1);
    graph.FreeLineDraw(nullptr, 0, 0, 0, 0, 0, 0, 1);
    graph.DrawCrossPoint(nullptr, 0, 0, 0);
    graph.GetPrintJob(nullptr, CRect(), nullptr);
    EXPECT_EQ(called,
              "InitializeParameter InitializeData AddData SetDrawSize GraphDraw MarkDraw FitLineDraw "
              "FreeLineDraw DrawCrossPoint GetPrintJob ");
}

TEST_F(VirtualOverride, OfBufferAndFileIsCalled) {
    Binary buffer;
    CMemFile memory;
    CArchive archive(&memory, CArchive::store);
    static_cast<CQBinary&>(buffer).Serialize(archive);
    archive.Close();
    File own;
    CQFile& file = own;
    static_cast<CFile&>(file).Open("none", 0, nullptr);
    file.WriteFromFile("none", 0, 0);
    file.ReadToFile("none", 0);
    static_cast<CFile&>(file).Close();
    EXPECT_EQ(called, "Serialize Open WriteFromFile ReadToFile Close ");
}

template <class Kept> void ArchiveAs(CArchive& archive) {
    Archived<Kept> own;
    called.clear();
    CObject& object = own;
    object.Serialize(archive);
    object.GetRuntimeClass();
    EXPECT_EQ(called, "Serialize GetRuntimeClass ");
}

TEST_F(VirtualOverride, OfArchivedClassesIsCalled) {
    CMemFile memory;
    CArchive archive(&memory, CArchive::store);
    ArchiveAs<CCalcVariable>(archive);
    ArchiveAs<CCalcVariableList>(archive);
    ArchiveAs<CQWCalc>(archive);
    ArchiveAs<CHistoryRenewInfo>(archive);
}

TEST_F(VirtualOverride, OfUserStoreIsCalled) {
    Agent own;
    CClassAgentConnectInterface& store = own;
    const CUserInfo user;
    store.Connect();
    store.IsConnected();
    store.Reserved4();
    store.Reserved5();
    store.Reserved6();
    store.LogonWithDialog();
    store.Logon("ann", "secret");
    store.Reserved9();
    store.Reserved10();
    store.GetLogonUser(nullptr);
    store.GetLogonUsername();
    store.Reserved13();
    store.IsAutoLogon();
    store.SetAutoLogon(1);
    store.GetAutoLogonUserName();
    store.GetAutoLogonPassword();
    store.SetAutoLogonUser("ann");
    store.GetUserInfo("ann", nullptr);
    store.Reserved20();
    store.Reserved21();
    store.ReloadUserList();
    store.GetUserCount();
    store.GetUserName(0);
    store.SaveFunctionSecurity(user);
    store.AddUser(user);
    store.Reserved27();
    store.DeleteUser("ann");
    EXPECT_EQ(called,
              "Connect IsConnected 4 5 6 LogonWithDialog Logon 9 10 GetLogonUser GetLogonUsername 13 IsAutoLogon "
              "SetAutoLogon GetAutoLogonUserName GetAutoLogonPassword SetAutoLogonUser GetUserInfo 20 21 "
              "ReloadUserList GetUserCount GetUserName SaveFunctionSecurity AddUser 27 DeleteUser ");
}
