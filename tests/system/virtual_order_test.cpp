#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstddef>
#include <cstring>
#include <typeinfo>
#include <utility>

#include "qellib10/qellib10.h"

// Modules built at different times call virtual operations by their slot, so the order, and the end, of the fixed
// ones never changes. A destructor takes two slots: one that destroys, one that also frees.
namespace {

// The position that a pointer to a virtual member carries: twice eight bytes, the first of them its offset plus 1.
template <class Member> std::size_t Slot(Member member) {
    std::size_t words[2];
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(words, &member, sizeof(words));
    EXPECT_EQ(words[0] % sizeof(void*), 1u) << "not virtual";
    return words[0] / sizeof(void*);
}

// The slots of the object's class, from the size of its table in the shared library; two entries come before them.
template <class Object> std::size_t Slots(const Object& object) {
    void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof(table));
    Dl_info info;
    void* symbol = nullptr;
    if (dladdr1(table, &info, &symbol, RTLD_DL_SYMENT) == 0 || symbol == nullptr) return 0;
    return static_cast<const ElfW(Sym)*>(symbol)->st_size / sizeof(void*) - 2;
}

// Members follow each other, the first of them at @p slot.
template <class... Members> void ExpectInOrder(std::size_t slot, Members... members) {
    for (const std::size_t found : {Slot(members)...}) EXPECT_EQ(found, slot++);
}

constexpr std::size_t kDestructor = 2;

template <class... Objects> void ExpectDestructorAlone(const Objects&... objects) {
    for (const auto& [name, slots] : {std::pair(typeid(objects).name(), Slots(objects))...})
        EXPECT_EQ(slots, kDestructor) << name;
}

}  // namespace

TEST(VirtualOrder, EachOperationKeepsItsSlot) {
    ExpectDestructorAlone(CCheckDatafile(), CBase64(), CGuid(), CRSControlCode(), CQVariant(), CQELResource(),
                          CCheckRepeatExec(), CWorkerThreadCtrl(), CCryptBrowFish(), CHistoryCabinetFile(), CDiffItem(),
                          CQDiffList(), CQelPrintJobCommand(), CQelPrintJobBlockData(), CQelPrintJobQueueData(),
                          CQelPrintJobPageStyle(), CQelPrintJobDocumentData(), CFunctionInfo(), CUserInfo(),
                          CLineGraphStyle(), CAxisStyle(), CGraphDataCtrl());

    EXPECT_EQ(Slot(&CObject::GetRuntimeClass), 0u);
    EXPECT_EQ(Slot(&CObject::Serialize), 1u + kDestructor);
    EXPECT_EQ(Slots(CCalcVariable()), 2u + kDestructor);
    EXPECT_EQ(Slots(CCalcVariableList()), 2u + kDestructor);
    EXPECT_EQ(Slots(CQWCalc()), 2u + kDestructor);

    EXPECT_EQ(Slot(&CQBinary::Serialize), kDestructor);
    EXPECT_EQ(Slots(CQBinary()), 1u + kDestructor);

    const std::size_t fileSlots = Slots(CFile());
    EXPECT_EQ(Slot(&CQFile::Close), Slot(&CFile::Close));
    EXPECT_EQ(Slot(&CQFile::WriteFromFile), fileSlots);
    EXPECT_EQ(Slot(&CQFile::ReadToFile), fileSlots + 1);
    EXPECT_EQ(Slots(CQFile()), fileSlots + 2);
    EXPECT_EQ(Slots(CQCSVFile()), fileSlots + 2);

    using Memory = CMemoryMappedFile;
    ExpectInOrder(kDestructor, &Memory::Open, &Memory::Close, &Memory::GetDataPtr, &Memory::GetDataPtrUnmap,
                  &Memory::SetData);
    EXPECT_EQ(Slots(CMemoryMappedFile()), kDestructor + 5);
    EXPECT_EQ(Slots(CAutoLockedMemoryMappedFile()), kDestructor + 5);

    struct Document : CCryptXMLDocument {
        using ByPath = int (CCryptXMLDocument::*)(const char*, int);
        static ByPath LoadPlain() { return &Document::LoadPlainXMLFile; }
        static ByPath SavePlain() { return &Document::SavePlainXMLFile; }
    };
    ExpectInOrder(kDestructor, &Document::LoadXMLFile, &Document::SaveXMLFile, &Document::LockFile, &Document::IsLocked,
                  &Document::LockCommit, &Document::LockRollback, Document::LoadPlain(), Document::SavePlain());
    EXPECT_EQ(Slots(CCryptXMLDocument()), kDestructor + 8);
    EXPECT_EQ(Slots(CHistoryRenewInfo()), 2u + kDestructor);

    using Security = CFunctionSecurity;
    ExpectInOrder(kDestructor, &Security::InitializeFunctionInfo, &Security::GetMachineID, &Security::GetMachineName,
                  &Security::SetFunctionParameter, &Security::SetMakerParameter, &Security::SetManagerParameter);
    EXPECT_EQ(Slots(CFunctionSecurity()), kDestructor + 6);

    struct Setting : CSystemSetting {
        using CSystemSetting::SetLoginUserName;
    };
    ExpectInOrder(kDestructor, &Setting::IsAutoLogon, &Setting::SetAutoLogon, &Setting::GetAutoLogonUserName,
                  &Setting::GetAutoLogonPassword, &Setting::SetAutoLogonUser, &Setting::SetLoginUserName);
    EXPECT_EQ(Slots(CSystemSetting(nullptr)), kDestructor + 6);

    using Graph = CQelGraph;
    ExpectInOrder(kDestructor, &Graph::InitializeParameter, &Graph::InitializeData, &Graph::AddData,
                  &Graph::SetDrawSize, &Graph::GraphDraw, &Graph::MarkDraw, &Graph::FitLineDraw, &Graph::FreeLineDraw,
                  &Graph::DrawCrossPoint, &Graph::GetPrintJob);
    EXPECT_EQ(Slots(CQelGraph()), kDestructor + 10);

    // Its slots have numbers, which count from 1 with the destructor as one.
    using Store = CClassAgentConnectInterface;
    ExpectInOrder(2, &Store::Connect, &Store::IsConnected, &Store::Reserved4, &Store::Reserved5, &Store::Reserved6,
                  &Store::LogonWithDialog, &Store::Logon, &Store::Reserved9, &Store::Reserved10, &Store::GetLogonUser,
                  &Store::GetLogonUsername, &Store::Reserved13, &Store::IsAutoLogon, &Store::SetAutoLogon,
                  &Store::GetAutoLogonUserName, &Store::GetAutoLogonPassword, &Store::SetAutoLogonUser,
                  &Store::GetUserInfo, &Store::Reserved20, &Store::Reserved21, &Store::ReloadUserList,
                  &Store::GetUserCount, &Store::GetUserName, &Store::SaveFunctionSecurity, &Store::AddUser,
                  &Store::Reserved27, &Store::DeleteUser);
    EXPECT_EQ(Slot(&Store::DeleteUser), 28u);
}
