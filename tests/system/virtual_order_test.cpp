#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstddef>
#include <cstring>

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

// The slots of the object's class, from the size of its table in the shared library; two entries stand before them.
template <class Object> std::size_t Slots(const Object& object) {
    void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof(table));
    Dl_info info;
    void* symbol = nullptr;
    if (dladdr1(table, &info, &symbol, RTLD_DL_SYMENT) == 0 || symbol == nullptr) return 0;
    return static_cast<const ElfW(Sym)*>(symbol)->st_size / sizeof(void*) - 2;
}

constexpr std::size_t kDestructor = 2;

}  // namespace

TEST(VirtualOrder, IsFixed) {
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
    EXPECT_EQ(Slots(CCheckDatafile()), kDestructor);

    EXPECT_EQ(Slots(CBase64()), kDestructor);
    EXPECT_EQ(Slots(CGuid()), kDestructor);
    EXPECT_EQ(Slots(CRSControlCode()), kDestructor);
    EXPECT_EQ(Slots(CQVariant()), kDestructor);
    EXPECT_EQ(Slots(CQELResource()), kDestructor);

    EXPECT_EQ(Slot(&CMemoryMappedFile::Open), kDestructor);
    EXPECT_EQ(Slot(&CMemoryMappedFile::Close), kDestructor + 1);
    EXPECT_EQ(Slot(&CMemoryMappedFile::GetDataPtr), kDestructor + 2);
    EXPECT_EQ(Slot(&CMemoryMappedFile::GetDataPtrUnmap), kDestructor + 3);
    EXPECT_EQ(Slot(&CMemoryMappedFile::SetData), kDestructor + 4);
    EXPECT_EQ(Slots(CMemoryMappedFile()), kDestructor + 5);
    EXPECT_EQ(Slots(CAutoLockedMemoryMappedFile()), kDestructor + 5);
    EXPECT_EQ(Slots(CCheckRepeatExec()), kDestructor);
    EXPECT_EQ(Slots(CWorkerThreadCtrl()), kDestructor);

    EXPECT_EQ(Slots(CDiffItem()), kDestructor);
    EXPECT_EQ(Slots(CQDiffList()), kDestructor);
}
