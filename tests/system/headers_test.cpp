#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

namespace {

std::set<std::string> LinesBetween(const char* path, const std::string& before, const std::string& after) {
    std::ifstream file(path);
    std::set<std::string> found;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(before) && line.ends_with(after)) {
            found.insert(line.substr(before.size(), line.size() - before.size() - after.size()));
        }
    }
    return found;
}

}  // namespace

TEST(Umbrella, IncludesEveryInstalledHeader) {
    EXPECT_EQ(LinesBetween(QELLIB10_SOURCE_DIR "/qellib10.h", "#include \"", "\""),
              LinesBetween(QELLIB10_PUBLIC_HEADERS, "", ""));
}
