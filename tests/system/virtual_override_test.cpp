#include <gtest/gtest.h>

#include <string>

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

struct Document : CCryptXMLDocument {
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

struct File : CQFile {
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
    document.LoadXMLFile("none.xml", 0);
    document.SaveXMLFile("none.xml", 0);
    document.LockFile("none.xml", 0, 0);
    document.IsLocked();
    document.LockCommit();
    document.LockRollback();
    EXPECT_EQ(called, "LoadXMLFile LoadPlainXMLFile SaveXMLFile LockFile IsLocked LockCommit LockRollback ");
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
    file.WriteFromFile("none", 0, 0);
    file.ReadToFile("none", 0);
    static_cast<CFile&>(file).Close();
    EXPECT_EQ(called, "Serialize WriteFromFile ReadToFile Close ");
}
