#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

#include "../support/environment_scope.h"
#include "../support/temp_folder.h"
#include "qellib10/platform/storage/restart_record.h"

namespace {

struct Answer {
    int code;
    std::string text;  // of both outputs
};

Answer RunProgram(const std::string& arguments) {
    FILE* pipe = ::popen((QELLIB10_RESTART_OPERATIONS " " + arguments + " 2>&1").c_str(), "r");
    std::string text;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
    const int status = ::pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

}  // namespace

TEST(RestartOperations, ListsThenCarriesOut) {
    const TempFolder folder;
    const EnvironmentScope state("QELLIB10_STATE_DIR", folder.Posix().c_str());
    const auto line = [&](const char* source, const char* target) {
        const std::string to = *target != '\0' ? folder.Posix(target).native() : "";
        return qel::RestartRecord{false, "earlier", {folder.Posix(source), to}}.Line();
    };
    folder.Write("a", "1");
    std::filesystem::create_directory(folder.Posix("d"));
    folder.Write("pending-moves", line("a", "b") + line("d", ""));
    const Answer list = RunProgram("--list");
    EXPECT_EQ(list.code, 0);
    const std::string place = folder.Posix().native() + '/';
    EXPECT_EQ(list.text, "move " + place + "a to " + place + "b\ndelete " + place + "d\n");
    const Answer run = RunProgram("");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.text, "cannot delete " + place + "d: Is a directory\n");
    EXPECT_EQ(folder.Read("b"), "1");
    EXPECT_FALSE(folder.Has("pending-moves"));
    EXPECT_EQ(RunProgram("--other").code, 2);
    std::filesystem::create_directory(folder.Posix("pending-moves"));
    EXPECT_EQ(RunProgram("").code, 1);
}
