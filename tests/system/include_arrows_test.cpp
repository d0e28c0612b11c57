#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Who stands directly on whom. A node may include its own files and those of every node that it stands on, however far
// below. Nodes are folders and, where a pair of files stands higher than its folder, that pair.
const std::map<std::string, std::vector<std::string>> kStandsOn = {
    {"platform", {}},
    {"platform/text", {"platform"}},
    {"platform/time", {"platform/text"}},
    {"platform/variant", {"platform/time"}},
    {"platform/storage", {"platform/time"}},
    {"platform/archive", {"platform/storage"}},
    {"resource", {"platform/text"}},
    {"runtime", {"resource", "platform/archive"}},
    {"base", {"runtime", "platform/variant"}},
    {"calc", {"base"}},
    {"file", {"base"}},
    {"base/q_csv_file", {"file"}},
    {"secure", {"file"}},
    {"user", {"file"}},
    {"print", {"file"}},
    {"graph", {"print"}},
};

// The one foreign library that a subsystem includes: its number type stands in the interface of CBCD.
constexpr const char* kFolderWithDecNumber = "calc";

bool Reaches(const std::string& from, const std::string& to) {
    return from == to || std::ranges::any_of(kStandsOn.at(from), [&](const auto& next) { return Reaches(next, to); });
}

// The longest node that @p path (below the root, with its extension) belongs to; empty when there is none.
std::string NodeOf(const fs::path& path) {
    const std::string pair = fs::path(path).replace_extension().generic_string();
    if (kStandsOn.contains(pair)) return pair;
    const std::string folder = path.parent_path().generic_string();
    return kStandsOn.contains(folder) ? folder : "";
}

struct Include {
    fs::path file;  // below the root
    std::string name;
    bool quoted;
};

std::vector<Include> LibraryIncludes() {
    std::vector<Include> found;
    const fs::path root = QELLIB10_SOURCE_DIR;
    std::set<std::string> folders;
    for (const auto& [node, below] : kStandsOn) folders.insert(node.substr(0, node.find('/')));
    for (const std::string& folder : folders) {
        if (!fs::exists(root / folder)) continue;
        for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
            const auto extension = entry.path().extension();
            if (extension != ".h" && extension != ".cpp") continue;
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);) {
                if (!line.starts_with("#include ") || line.size() < 11) continue;
                const std::size_t end = line.find(line[9] == '"' ? '"' : '>', 10);
                found.push_back({fs::relative(entry.path(), root), line.substr(10, end - 10), line[9] == '"'});
            }
        }
    }
    return found;
}

// Standard headers have no extension; the processor's vector instructions belong to the compiler.
bool IsOfTheLanguage(const std::string& header) {
    return header.find('.') == std::string::npos || header == "immintrin.h";
}

}  // namespace

TEST(IncludeArrows, HaveNoCycle) {
    std::set<std::string> done;
    std::vector<std::string> path;
    std::function<bool(const std::string&)> visit = [&](const std::string& node) {
        if (std::ranges::find(path, node) != path.end()) return false;
        if (done.contains(node)) return true;
        path.push_back(node);
        for (const std::string& next : kStandsOn.at(node)) {
            if (!visit(next)) return false;
        }
        path.pop_back();
        done.insert(node);
        return true;
    };
    for (const auto& [node, below] : kStandsOn) ASSERT_TRUE(visit(node)) << "a cycle goes through " << path.back();
}

TEST(IncludeArrows, PointDown) {
    const std::vector<Include> includes = LibraryIncludes();
    ASSERT_GT(includes.size(), 20u);
    for (const Include& include : includes) {
        if (!include.quoted) continue;
        const std::string line = include.file.string() + " includes \"" + include.name + "\": ";
        if (!include.name.starts_with("qellib10/")) {
            ADD_FAILURE() << line << "ours are written \"qellib10/...\"";
            continue;
        }
        const fs::path target = include.name.substr(9);
        EXPECT_TRUE(fs::exists(QELLIB10_SOURCE_DIR / target)) << line << "no such file";
        const std::string from = NodeOf(include.file);
        const std::string to = NodeOf(target);
        if (from.empty() || to.empty()) {
            ADD_FAILURE() << line << (from.empty() ? include.file : target) << " belongs to no node of the table";
            continue;
        }
        EXPECT_TRUE(Reaches(from, to)) << line << "the arrow " << from << " -> " << to << " is not in the table";
    }
}

TEST(IncludeArrows, ForeignHeadersStayInPlatformSources) {
    for (const Include& include : LibraryIncludes()) {
        if (include.quoted || IsOfTheLanguage(include.name)) continue;
        const std::string folder = include.file.begin()->string();
        if (folder == "platform" && include.file.extension() == ".cpp") continue;
        if (folder == kFolderWithDecNumber && include.name.starts_with("qellib10/decnumber/")) continue;
        ADD_FAILURE() << include.file << " includes <" << include.name << ">";
    }
}
