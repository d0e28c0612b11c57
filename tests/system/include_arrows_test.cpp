#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// Who stands directly on whom, from the bottom up. A node may include its own files and those of every node that it
// stands on, however far below. Nodes are folders and, where a pair of files stands higher than its folder, that pair.
struct Row {
    std::string node;
    std::vector<std::string> below;
};
const std::vector<Row> kStandsOn = {
    {"platform", {}},
    {"platform/text", {"platform"}},
    {"platform/time", {"platform/text"}},
    {"platform/xml", {"platform/text"}},
    {"platform/variant", {"platform/time"}},
    {"platform/storage", {"platform/time"}},
    {"platform/shell", {"platform/storage"}},
    {"platform/sync", {"platform/storage"}},
    {"platform/archive", {"platform/storage"}},
    {"platform/registry", {"platform/shell"}},
    {"platform/drawing", {"platform/archive"}},
    {"platform/printing", {"platform/drawing", "platform/shell"}},
    {"resource", {"platform/text"}},
    {"runtime", {"resource", "platform/archive", "platform/shell", "platform/sync"}},
    {"base", {"runtime", "platform/variant"}},
    {"calc", {"base"}},
    {"file", {"base", "platform/registry"}},
    {"base/q_csv_file", {"file"}},
    {"secure", {"file", "platform/xml"}},
    {"user", {"file"}},
    {"print", {"file", "platform/printing", "platform/xml"}},
    {"graph", {"print"}},
};

// The one foreign library that a subsystem includes: its number type stands in the interface of CBCD.
constexpr const char* kFolderWithDecNumber = "calc";

const Row* Find(const std::string& node) {
    const auto row = std::ranges::find(kStandsOn, node, &Row::node);
    return row != kStandsOn.end() ? &*row : nullptr;
}

bool Reaches(const Row& from, const std::string& to) {
    return from.node == to ||
           std::ranges::any_of(from.below, [&](const auto& next) { return Reaches(*Find(next), to); });
}

// The row that @p path (below the root, with its extension) belongs to, or null.
const Row* RowOf(const fs::path& path) {
    const Row* const pair = Find(fs::path(path).replace_extension().generic_string());
    return pair != nullptr ? pair : Find(path.parent_path().generic_string());
}

struct Include {
    fs::path file;  // below the root
    std::string name;
    bool quoted;
};

std::vector<Include> LibraryIncludes() {
    std::vector<Include> found;
    const fs::path root = QELLIB10_SOURCE_DIR;
    for (const auto& [folder, below] : kStandsOn) {
        if (folder.find('/') != std::string::npos || !fs::exists(root / folder)) continue;
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
    return header.find('.') == std::string::npos || header.ends_with("mmintrin.h");
}

}  // namespace

TEST(IncludeArrows, HaveNoCycle) {
    for (auto row = kStandsOn.begin(); row != kStandsOn.end(); ++row) {
        for (const std::string& below : row->below) {
            const auto found = std::ranges::find(kStandsOn.begin(), row, below, &Row::node);
            EXPECT_NE(found, row) << row->node << " -> " << below << " does not point to a row above";
        }
    }
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
        const Row* const from = RowOf(include.file);
        const Row* const to = RowOf(target);
        if (from == nullptr || to == nullptr) {
            ADD_FAILURE() << line << (from == nullptr ? include.file : target) << " belongs to no node of the table";
            continue;
        }
        EXPECT_TRUE(Reaches(*from, to->node)) << line << "no arrow " << from->node << " -> " << to->node;
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
