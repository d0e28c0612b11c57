#include "qellib10/user/function_security.h"

#include "../support/test.h"
#include "qellib10/user/user_info.h"

namespace {

class TitratorSecurity : public CFunctionSecurity {
public:
    void InitializeFunctionInfo() override {
        CFunctionSecurity::InitializeFunctionInfo();
        AddFunctionInfo(CFunctionInfo(100, "Calibrate", 2));
        AddFunctionInfo(CFunctionInfo(7, "Print", 0));
        AddFunctionInfo(CFunctionInfo(100, "Calibrate again", 5));
    }
};

}  // namespace

TEST(FunctionSecurity, TheFirstEntryOfAnIdentifierIsFound) {
    TitratorSecurity security;
    EXPECT_EQ(security.GetFunctionSecurity(100), -1);
    security.Initialize();
    security.Initialize();
    for (const auto& [index, id] : Cases<int, int>{
             {-1, -1},
             {0, 100},
             {1, 7},
             {2, 100},
             {3, -1},
         })
        EXPECT_EQ(security.GetFunctionID(index), id) << index;
    EXPECT_EQ(Line({security.SetFunctionSecurity(100, 3), security.SetFunctionSecurity(8, 3)}), "1 0");
    EXPECT_EQ(security.GetFunctionSecurity(100), 3);
    EXPECT_EQ(Line({security.GetFunctionName(100), security.GetFunctionName(8)}), "Calibrate ");
}

TEST(FunctionSecurity, MakerAndManagerMayDoEverything) {
    TitratorSecurity security;
    security.Initialize();
    using Set = void (CFunctionSecurity::*)(int);
    const Set maker = &CFunctionSecurity::SetMakerParameter, manager = &CFunctionSecurity::SetManagerParameter;
    for (const auto& [set, value, isMaker, isManager, level, unknown] : Cases<Set, int, int, int, int, int>{
             {maker, 0, 0, 0, 2, -1},
             {manager, 1, 0, 1, 1, 1},
             {manager, 0, 0, 0, 2, -1},
             {maker, 1, 1, 1, 1, 1},
             {manager, 0, 1, 1, 1, 1},
             {maker, 0, 0, 1, 1, 1},
         }) {
        (security.*set)(value);
        EXPECT_EQ(security.GetMakerParameter(), isMaker);
        EXPECT_EQ(security.GetManagerParameter(), isManager);
        EXPECT_EQ(security.GetFunctionSecurity(100), level);
        EXPECT_EQ(security.GetFunctionSecurity(8), unknown);
    }
    security.SetShow(0);
    security.Initialize();
    EXPECT_EQ(security.GetManagerParameter(), 0);
    EXPECT_EQ(security.GetShow(), 1);
}

TEST(UserInfo, CopiesHaveTheirOwnTable) {
    TitratorSecurity security;
    security.Initialize();
    security.SetShow(4);
    CUserInfo user;
    user.SetUserID(12);
    user.SetPassword("secret");
    user.SetSecurity(security);
    CUserInfo copy = user;
    EXPECT_EQ(copy.SetFunctionSecurity(7, 9), 1);
    EXPECT_EQ(user.GetFunctionSecurity(7), 0);
    copy.SetMakerFlag(1);
    EXPECT_EQ(copy.GetManagerFlag(), 1);
    copy = user;
    EXPECT_EQ(copy.GetManagerFlag(), 0);
    EXPECT_EQ(copy.GetSecurity().GetShow(), 4);
    copy.Initialize();
    EXPECT_EQ(copy.GetUserID(), 12);  // kept
    EXPECT_EQ(copy.GetPassword(), "");
    EXPECT_EQ(copy.GetSecurity().GetFunctionIDCount(), 0);
}
