#include <gtest/gtest.h>

#include "qellib10/qellib10.h"

// An application's override has the documented signature, without const. One that differs from the library's compiles
// as a function of its own when it is written without `override`, and nobody ever calls it.
// It is enough that these compile.
namespace overrides {

struct Security : CFunctionSecurity {
    void InitializeFunctionInfo() override;
    int GetMachineID() override;
    CString GetMachineName() override;
    void SetFunctionParameter() override;
    void SetMakerParameter(int) override;
    void SetManagerParameter(int) override;
};

struct Setting : CSystemSetting {
    int IsAutoLogon() override;
    int SetAutoLogon(int) override;
    CString GetAutoLogonUserName() override;
    CString GetAutoLogonPassword() override;
    int SetAutoLogonUser(const CString&) override;
    int SetLoginUserName(const char*) override;
};

struct Document : CCryptXMLDocument {
    int LoadXMLFile(const char*, int) override;
    int SaveXMLFile(const char*, int) override;
    int LockFile(const char*, int, int) override;
    int IsLocked() override;
    int LockCommit() override;
    int LockRollback() override;
    int LoadPlainXMLFile(const char*, int) override;
    int SavePlainXMLFile(const char*, int) override;
};

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

namespace {

std::string called;
int Note(const char* name) {
    called += std::string(name) + ' ';
    return 0;
}

struct Security : CFunctionSecurity {
    void InitializeFunctionInfo() override { Note("InitializeFunctionInfo"); }
    void SetFunctionParameter() override { Note("SetFunctionParameter"); }
};
struct Setting : CSystemSetting {
    using CSystemSetting::CSystemSetting;
    int SetLoginUserName(const char*) override { return Note("SetLoginUserName"); }
};
struct Document : CCryptXMLDocument {
    int LoadPlainXMLFile(const char*, int) override { return Note("LoadPlainXMLFile"); }
};

}  // namespace

TEST(VirtualOverride, IsCalledByTheLibrarysOwnOperations) {
    Security security;
    security.Initialize();
    security.SetMakerParameter(1);
    Setting(nullptr).Logoff();
    Document document;
    document.SetCryptMode(0);
    document.LoadXMLFile("none.xml", 0);
    EXPECT_EQ(called, "InitializeFunctionInfo SetFunctionParameter SetLoginUserName LoadPlainXMLFile ");
}
