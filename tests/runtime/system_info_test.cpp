#include "qellib10/runtime/system_info.h"

#include <cstdlib>

#include "../support/test.h"
#include "qellib10/platform/shell/system_state.h"

TEST(SystemInfo, AVersionIsComparedByBothNumbers) {
    int major = 0, minor = 0;
    CSystemInfo::GetSystemVersion(&major, &minor);
    EXPECT_GE(major, 3);
    EXPECT_EQ(Line({CSystemInfo::IsSystemVersion(major, minor), CSystemInfo::IsSystemVersion(major - 1, minor + 1)}),
              "1 1");
    EXPECT_EQ(Line({CSystemInfo::IsSystemVersion(major, minor + 1), CSystemInfo::IsSystemVersion(major + 1, 0)}),
              "0 0");
    EXPECT_FALSE(CSystemInfo::GetSystemName().IsEmpty());
}

TEST(SystemInfo, TheProxyIsThatOfTheEnvironment) {
    const auto proxy = [](const char* http, const char* none) {
        for (const char* name : {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
            ::unsetenv(name);
        ::setenv("HTTP_PROXY", http, 1);
        ::setenv("no_proxy", none, 1);
        CString server = "old", bypass = "old";
        const BOOL isSet = CSystemInfo::GetBrowserProxy(server, bypass);
        return std::pair(isSet, server + " but " + bypass);
    };
    EXPECT_EQ(proxy("http://proxy:3128", "a,b"), std::pair(1, CString("http://proxy:3128 but a,b")));
    EXPECT_EQ(proxy("", "a,b"), std::pair(0, CString(" but ")));
}

TEST(SystemInfo, ADialUpConnectionIsAnInterfaceOfThatKindThatIsUp) {
    const TempFolder interfaces;
    const auto add = [&](const std::string& name, const char* state) {
        std::filesystem::create_directory(interfaces.Posix(name));
        interfaces.Write(name + "/operstate", std::string(state) + "\n");
        return qel::IsDialUpConnected(interfaces.Posix());
    };
    EXPECT_EQ(Line({add("eth0", "up"), add("ppp0", "down"), qel::IsDialUpConnected(interfaces.Posix("none"))}),
              "0 0 0");
    EXPECT_TRUE(add("ppp1", "unknown"));
}

TEST(SystemInfo, ARestartSucceedsWhenItsProgramDoes) {
    EXPECT_TRUE(qel::RunCommand({"true", "-r", "now"}));
    EXPECT_EQ(Line({qel::RunCommand({"false"}), qel::RunCommand({"no-such-program"}), qel::RunCommand({})}), "0 0 0");
}
