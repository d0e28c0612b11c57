#include <cstdlib>

#include "../support/test.h"
#include "qellib10/platform/shell/debug_output.h"
#include "qellib10/platform/shell/module.h"
#include "qellib10/platform/shell/special_folder.h"

TEST(SpecialFolder, HasADefaultWhereTheEnvironmentSaysNothing) {
    using qel::SpecialFolder;
    const EnvironmentScope relative("XDG_CONFIG_HOME", "c"), home("HOME", "/h"), none("XDG_CONFIG_DIRS", nullptr);
    EXPECT_EQ(qel::SpecialFolderPath(SpecialFolder::kAppData), "\\h\\.config");
    EXPECT_EQ(qel::SpecialFolderPath(SpecialFolder::kCommonStartup), "\\etc\\xdg\\autostart");
    EXPECT_EQ(qel::SpecialFolderPath(SpecialFolder{99}), "");
    const EnvironmentScope noHome("HOME", nullptr);
    EXPECT_TRUE(std::string(qel::SpecialFolderPath(SpecialFolder::kAppData).View()).ends_with("\\.config"));
}

TEST(Module, HasThePathOfItsFile) {
    static int inProgram = 0;
    const CString program = qel::ToLibraryPath(std::filesystem::read_symlink("/proc/self/exe").native());
    EXPECT_EQ(qel::ModulePath(nullptr), program);
    EXPECT_EQ(qel::ModulePath(&inProgram), program);
    const CString library = qel::ModulePath(reinterpret_cast<void*>(&std::strtol));
    EXPECT_EQ(library.GetAt(0), '\\') << library;
    EXPECT_GT(library.Find(".so"), 0) << library;
    int onStack = 0;
    EXPECT_EQ(Line({qel::ModulePath(&onStack), qel::ModulePath(reinterpret_cast<void*>(8))}), " ");
}

TEST(DebugOutput, GoesWhereTheEnvironmentSays) {
    for (const auto& [where, expected] : Cases<const char*, const char*>{
             {"stderr", "\xE8\xA1\xA8"},
             {"none", ""},
         }) {
        const EnvironmentScope output("QELLIB10_DEBUG_OUTPUT", where);
        testing::internal::CaptureStderr();
        for (const char* text : {"\x95\x5C", static_cast<const char*>(nullptr)}) OutputDebugStringA(text);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
    }
}
