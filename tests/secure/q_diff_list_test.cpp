#include "qellib10/secure/q_diff_list.h"

#include "../support/test.h"

TEST(DiffList, KeepsCopiesInTheOrderOfAdding) {
    CQDiffList list;
    CDiffItem item, out;
    item.SetBefore("1");
    item.SetAfter("2");
    for (const char* name : {"A", "B", "C"}) {
        item.SetName(name);
        list.AddDiffItem(item);
    }
    item.InitParameter();
    EXPECT_EQ(Line({item.GetName().IsEmpty(), item.GetBefore().IsEmpty(), item.GetAfter().IsEmpty()}), "1 1 1");
    const CQDiffList copy = list;
    list.InitParameter();
    EXPECT_EQ(Line({list.GetCount(), list.GetDiffItemIndex(0, &out)}), "0 0");
    list.AddDiffItem(item);
    EXPECT_EQ(list.GetDiffItemIndex(0, &out), 1);
    for (int i = 0; i < copy.GetCount(); ++i) {
        ASSERT_EQ(copy.GetDiffItemIndex(i, &out), 1);
        EXPECT_EQ(Line({out.GetName(), out.GetBefore(), out.GetAfter()}),
                  std::string(1, static_cast<char>('A' + i)) + " 1 2");
    }
    EXPECT_EQ(
        Line({copy.GetDiffItemIndex(-1, &out), copy.GetDiffItemIndex(3, &out), copy.GetDiffItemIndex(0, nullptr)}),
        "0 0 0");
    EXPECT_EQ(out.GetName(), "C");
}
