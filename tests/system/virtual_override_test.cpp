#include "../support/test.h"
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

class VirtualOverride : public testing::Test {
protected:
    VirtualOverride() { called.clear(); }
};

}  // namespace

// The library calls none of these: it is enough that they compile.
namespace overrides {

struct Memory : CMemoryMappedFile {
    int Open(DWORD, const char*, DWORD) override;
    void Close() override;
    void* GetDataPtr(DWORD, DWORD) override;
    void GetDataPtrUnmap() override;
    int SetData(void*, DWORD, DWORD*) override;
};

struct Graph : CQelGraph {
    int InitializeParameter(int) override;
    int InitializeData(int) override;
    int AddData(int, double, double) override;
    void SetDrawSize(int, int) override;
    int GraphDraw(CDC*, int, int) override;
    int MarkDraw(CDC*, int, double, double, int, unsigned long, int, CRect*) override;
    int FitLineDraw(CDC*, int, double, double, double, double, double, double, double, double, unsigned long,
                    int) override;
    int FreeLineDraw(CDC*, int, double, double, double, double, unsigned long, int) override;
    int DrawCrossPoint(CDC*, int, double, double) override;
    int GetPrintJob(CQelPrintJobQueueData*, const CRect&, CDC*) override;
};

struct Binary : CQBinary {
    void Serialize(CArchive&) override;
};

template <class Kept> struct Archived : Kept {
    const CRuntimeClass* GetRuntimeClass() const override;
    void Serialize(CArchive&) override;
};
static_assert(sizeof(Archived<CCalcVariable>) != 0 && sizeof(Archived<CCalcVariableList>) != 0);
static_assert(sizeof(Archived<CQWCalc>) != 0 && sizeof(Archived<CHistoryRenewInfo>) != 0);

// The other operations of a user store: tests/user/system_setting_test.cpp.
struct Agent : CClassAgentConnectInterface {
    int Reserved4() override;
    int Reserved5() override;
    int Reserved6() override;
    int Reserved9() override;
    int Reserved10() override;
    int Reserved13() override;
    int Reserved20() override;
    int Reserved21() override;
    int Reserved27() override;
};

struct File : CQFile {
    BOOL Open(const char*, UINT, CFileException*) override;
    void Close() override;
    void WriteFromFile(const char*, UINT, DWORD) override;
    void ReadToFile(const char*, DWORD) override;
};

}  // namespace overrides

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
