#include <algorithm>
#include <fstream>

#include "../support/test.h"

namespace {

namespace fs = std::filesystem;

// Each node with the nodes directly below it, from the bottom up. A node may include its own files and those of every
// node below it, at any depth. Nodes are folders.
struct Row {
    std::string node;
    std::vector<std::string> below;
};
const std::vector<Row> kArrows = {
    {"platform", {}},
    {"platform/text", {"platform"}},
    {"platform/time", {"platform/text"}},
    {"platform/xml", {"platform/text"}},
    {"platform/variant", {"platform/time"}},
    {"platform/storage", {"platform/time"}},
    {"platform/ini", {"platform/storage"}},
    {"platform/restart", {"platform/storage"}},
    {"platform/shell", {"platform/storage"}},
    {"platform/sync", {"platform/storage"}},
    {"platform/archive", {"platform/storage"}},
    {"platform/database", {"platform"}},
    {"platform/crypto", {"platform/storage"}},
    {"platform/pam", {"platform"}},
    {"platform/registry", {"platform/database", "platform/shell"}},
    {"platform/drawing", {"platform/archive", "platform/shell"}},
    {"platform/printing", {"platform/drawing"}},
    {"resource", {"platform/text"}},
    {"runtime", {"resource", "platform/archive", "platform/shell", "platform/sync"}},
    {"base", {"runtime", "platform/variant"}},
    {"calc", {"base"}},
    {"curve", {"platform"}},
    {"file", {"base", "platform/ini", "platform/registry", "platform/restart"}},
    {"secure", {"file", "platform/xml"}},
    {"user", {"file"}},
    {"store", {"user", "platform/crypto"}},
    {"record", {"secure", "user", "platform/crypto", "platform/pam"}},
    {"platform/decimal", {"platform"}},
    {"platform/statistics", {"platform"}},
    {"platform/json", {"platform"}},
    {"platform/units", {"platform"}},
    {"platform/algebra", {"platform"}},
    {"quantity", {"calc", "platform/decimal", "platform/json", "platform/statistics", "platform/units"}},
    {"evaluation", {"quantity", "curve", "platform/algebra"}},
    {"print", {"file", "platform/printing", "platform/xml"}},
    {"graph", {"print"}},
    {"gtk", {"platform/printing", "graph"}},
    {"demo/support", {}},
    {"demo/curve", {"demo/support"}},
    {"demo/method", {"demo/support"}},
    {"demo/result", {"demo/curve", "demo/method"}},
    {"demo/report", {"demo/result"}},
    {"demo/record", {"demo/report"}},
    {"demo/verify", {"demo/record"}},
    {"demo/attack", {"demo/verify"}},
    {"demo", {"demo/attack"}},
};

// The foreign libraries that others than platform include.
constexpr std::pair<const char*, const char*> kIncludeForeign[] = {
    {"calc", "qellib10/decnumber/"},      // its number type is in the interface of CBCD
    {"gtk", "gtk/"},                      // what the companion library is about
    {"platform", "qellib10/decnumber/"},  // a header of decimal numbers, for its sources alone
    {"demo", "qellib10/qellib10.h"},      // an application takes the library as a whole
    {"demo", "qellib10/quantity.h"},      //
    {"demo", "qellib10/record.h"},        //
    {"demo", "qellib10/store.h"},         //
    {"demo", "sys/syscall.h"},            //
    {"demo", "unistd.h"},                 //
};

const Row* Find(const std::string& node) {
    const auto row = std::ranges::find(kArrows, node, &Row::node);
    return row != kArrows.end() ? &*row : nullptr;
}

bool Reaches(const Row& from, const std::string& to) {
    return from.node == to ||
           std::ranges::any_of(from.below, [&](const auto& next) { return Reaches(*Find(next), to); });
}

// The row that @p path (below the root, with its extension) belongs to, or null.
const Row* RowOf(const fs::path& path) { return Find(path.parent_path().generic_string()); }

// Why @p file, below the root, may not include @p header; empty when it may.
std::string Objection(const fs::path& file, const std::string& header, bool quoted) {
    if (!quoted) {
        // Standard headers have no extension; the processor's vector instructions belong to the compiler.
        const bool isOfTheLanguage = header.find('.') == std::string::npos || header.ends_with("mmintrin.h");
        const std::string folder = file.begin()->string();
        const bool isForeign = (folder != "platform" || file.extension() != ".cpp") &&
                               std::ranges::none_of(kIncludeForeign, [&](const auto& allowed) {
                                   return folder == allowed.first && header.starts_with(allowed.second);
                               });
        return !isOfTheLanguage && isForeign ? "foreign headers stay in the sources of platform" : "";
    }
    const bool isOfTheDemo = file.begin()->string() == "demo";
    const std::string head = isOfTheDemo ? "demo/" : "qellib10/";
    if (!header.starts_with(head)) return "ours are written \"" + head + "...\"";
    const fs::path target = isOfTheDemo ? header : header.substr(head.size());
    if (!fs::exists(QELLIB10_SOURCE_DIR / target)) return "no such file";
    const Row* const from = RowOf(file);
    const Row* const to = RowOf(target);
    if (from == nullptr || to == nullptr) return "one of them belongs to no node of the table";
    return Reaches(*from, to->node) ? "" : "no arrow " + from->node + " -> " + to->node;
}

}  // namespace

TEST(IncludeArrows, HaveNoCycle) {
    for (auto row = kArrows.begin(); row != kArrows.end(); ++row) {
        for (const std::string& below : row->below) {
            const auto found = std::ranges::find(kArrows.begin(), row, below, &Row::node);
            EXPECT_NE(found, row) << row->node << " -> " << below << " does not point to a row above";
        }
    }
}

TEST(IncludeArrows, PointDownAndForeignHeadersStayInPlatformSources) {
    const fs::path root = QELLIB10_SOURCE_DIR;
    int includes = 0;
    for (const auto& [folder, below] : kArrows) {
        if (folder.find('/') != std::string::npos) continue;
        for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
            const fs::path name = fs::relative(entry.path(), root);
            if (name.extension() != ".h" && name.extension() != ".cpp") continue;
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);) {
                if (!line.starts_with("#include ") || line.size() < 11) continue;
                const bool quoted = line[9] == '"';
                const std::string header = line.substr(10, line.find(quoted ? '"' : '>', 10) - 10);
                EXPECT_EQ(Objection(name, header, quoted), "") << name << " includes " << header;
                ++includes;
            }
        }
    }
    EXPECT_GT(includes, 20);
}
