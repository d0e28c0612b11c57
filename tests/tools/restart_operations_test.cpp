#include "../support/test.h"
#include "qellib10/platform/restart/restart_record.h"
#include "result_of.h"

namespace {

std::string ResultWith(const std::string& arguments) { return ResultOf(QELLIB10_RESTART_OPERATIONS " " + arguments); }

}  // namespace

TEST(RestartOperations, ListsThenCarriesOut) {
    const TempFolder folder;
    const EnvironmentScope state("QELLIB10_STATE_DIR", folder.Posix().c_str());
    const auto line = [&](const char* source, const char* target) {
        return qel::RestartRecord{false, "earlier", {folder.Posix(source), target}}.Line();
    };
    folder.Write("a", "1");
    std::filesystem::create_directory(folder.Posix("d"));
    folder.Write("pending-moves", line("a", folder.Posix("b").c_str()) + line("d", ""));
    const std::string place = folder.Posix().native() + '/';
    EXPECT_EQ(ResultWith("--list"), "0 move " + place + "a to " + place + "b\ndelete " + place + "d\n");
    EXPECT_EQ(ResultWith(""), "0 cannot delete " + place + "d: Is a directory\n");
    EXPECT_EQ(folder.Read("b"), "1");
    EXPECT_FALSE(folder.Has("pending-moves"));
    EXPECT_EQ(ResultWith("--other")[0], '2');
    folder.Write("pending-moves", "");
    std::filesystem::resize_file(folder.Posix("pending-moves"), std::uintmax_t{1} << 40);
    for (const char* arguments : {"", "--list"}) EXPECT_EQ(ResultWith(arguments)[0], '1');
}
