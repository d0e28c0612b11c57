#include "qellib10/platform/registry/registry.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "../support/child_process.h"
#include "../support/code_page_scope.h"
#include "../support/registry_scope.h"

namespace {

class Registry : public testing::Test {
protected:
    LONG Write(const std::string& path, const char* name, const std::string& data, DWORD type = REG_SZ) const {
        return qel::WriteRegistryValue(m_root, path.c_str(), "Class", name, {type, data});
    }
    LONG Read(const std::string& path, const char* name = "") const {
        qel::RegistryValue value;
        return qel::ReadRegistryValue(m_root, path.c_str(), name, value);
    }
    std::string Text(const std::string& path, const char* name = "") const {
        qel::RegistryValue value{0, "missing"};
        qel::ReadRegistryValue(m_root, path.c_str(), name, value);
        return value.data;
    }

    RegistryScope m_registry;
    HKEY m_root = HKEY_CURRENT_USER;
};

std::string Nested(int levels) {
    std::string path;
    for (int i = 0; i < levels; ++i) path += "k\\";
    return path;
}

}  // namespace

TEST_F(Registry, FindsNamesWhateverTheirCase) {
    EXPECT_EQ(Read("a"), qel::kRegistryNotFound);
    EXPECT_EQ(m_registry.Folder().Count(), 0);  // reading makes no database
    struct Case {
        const char *written, *read;
    };
    for (const Case& c :
         {Case{"Soft\\Key", "sOFT\\kEY"}, Case{"a\\b\\", "A\\\\B"}, Case{"\x82\x60", "\x82\x81"},  // full-width A
          Case{"\x83\x9F", "\x83\xBF"}, Case{"\x84\x46", "\x84\x76"},                              // Greek, Cyrillic io
          Case{"x\x83\x5C\\y", "X\x83\x5C\\Y"}}) {
        EXPECT_EQ(Write(c.written, "Name", c.written), qel::kRegistrySuccess);
        EXPECT_EQ(Text(c.read, "nAME"), c.written);
    }
    EXPECT_EQ(Read("A\\B", "other"), qel::kRegistryNotFound);
    EXPECT_EQ(Read("\xB1"), qel::kRegistryNotFound);  // half width is another name
    {
        const CodePageScope page(qel::kCodePageLatin1);
        EXPECT_EQ(Write("M\xDCHLE", nullptr, "\xE4\xB5"), qel::kRegistrySuccess);
        EXPECT_EQ(Text("m\xFChle"), "\xE4\xB5");
    }
    const CodePageScope page(qel::kCodePageUtf8);
    EXPECT_EQ(Text("m\xC3\xBChle"), "\xC3\xA4\xC2\xB5");  // the same key for a process of another page
}

TEST_F(Registry, RefusesWhatIsBeyondItsLimits) {
    struct Case {
        std::string path;
        LONG code;
    };
    const std::string longest(255, 'n');
    for (const Case& c : {Case{"\\a", qel::kRegistryBadPath}, Case{longest, qel::kRegistrySuccess},
                          Case{longest + "n", qel::kRegistryInvalidParameter}, Case{Nested(512), qel::kRegistrySuccess},
                          Case{Nested(513), qel::kRegistryInvalidParameter}}) {
        EXPECT_EQ(Write(c.path, "", "x"), c.code);
        EXPECT_EQ(Read(c.path), c.code);
    }
    EXPECT_EQ(Write("v", std::string(16383, 'n').c_str(), std::string(1 << 20, 'd')), qel::kRegistrySuccess);
    EXPECT_EQ(Text("v", std::string(16383, 'N').c_str()).size(), 1u << 20);
    EXPECT_EQ(Write("v", std::string(16384, 'n').c_str(), ""), qel::kRegistryInvalidParameter);
    EXPECT_EQ(Write("v", "", std::string((1 << 20) + 1, 'd')), qel::kRegistryInvalidParameter);

    HKEY deep = nullptr;
    ASSERT_EQ(qel::OpenRegistryKey(m_root, Nested(512).c_str(), deep), qel::kRegistrySuccess);
    HKEY none = nullptr;
    EXPECT_EQ(qel::CreateRegistryKey(deep, "k", "", none), qel::kRegistryInvalidParameter);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(qel::CloseRegistryKey(deep), qel::kRegistrySuccess);
    EXPECT_EQ(qel::CloseRegistryKey(deep), qel::kRegistryBadHandle);
    EXPECT_EQ(qel::OpenRegistryKey(nullptr, "v", none), qel::kRegistryBadHandle);
    EXPECT_EQ(qel::DeleteRegistryTree(m_root, ""), qel::kRegistryAccessDenied);
    EXPECT_EQ(qel::DeleteRegistryTree(m_root, "K"), qel::kRegistrySuccess);
    EXPECT_EQ(qel::DeleteRegistryTree(m_root, "k"), qel::kRegistryNotFound);
}

TEST_F(Registry, CopiesAndDeletesTrees) {
    for (const char* path : {"a", "a\\b", "a\\b\\c", "a\\d", "x\\b"}) ASSERT_EQ(Write(path, "v", path), 0);
    ASSERT_EQ(Write("x\\b", "own", "stays"), 0);
    HKEY a = nullptr;
    HKEY b = nullptr;
    HKEY x = nullptr;
    ASSERT_EQ(qel::OpenRegistryKey(m_root, "a", a), 0);
    ASSERT_EQ(qel::OpenRegistryKey(a, "b", b), 0);
    ASSERT_EQ(qel::CreateRegistryKey(m_root, "X", "", x), 0);
    EXPECT_EQ(qel::CopyRegistryTree(a, x), qel::kRegistrySuccess);
    for (const char* path : {"b\\c", "b", "d", ""})
        EXPECT_EQ(Text(std::string("x\\") + path, "v"), path[0] ? std::string("a\\") + path : "a");
    EXPECT_EQ(Text("x\\b", "own"), "stays");
    EXPECT_EQ(qel::CopyRegistryTree(a, b), qel::kRegistryInvalidParameter);  // into itself
    EXPECT_EQ(qel::CopyRegistryTree(a, HKEY_LOCAL_MACHINE), qel::kRegistryInvalidParameter);

    EXPECT_EQ(qel::DeleteRegistryTree(m_root, "a"), qel::kRegistrySuccess);
    EXPECT_EQ(Write("a\\b", "v", "new"), qel::kRegistrySuccess);
    qel::RegistryValue value;
    EXPECT_EQ(qel::ReadRegistryValue(b, "", "v", value), qel::kRegistryKeyDeleted);  // not the new key of its name
    EXPECT_EQ(qel::WriteRegistryValue(b, "", "", "v", value), qel::kRegistryKeyDeleted);
    EXPECT_EQ(qel::WriteRegistryValue(b, "c", "", "v", value), qel::kRegistryKeyDeleted);
    EXPECT_EQ(qel::CopyRegistryTree(b, x), qel::kRegistryKeyDeleted);
    EXPECT_EQ(qel::CopyRegistryTree(x, b), qel::kRegistryKeyDeleted);
}

TEST_F(Registry, TransactionsAreAllOrNothing) {
    {
        qel::RegistryTransaction empty;
        EXPECT_EQ(empty.Begin(m_root), qel::kRegistryNotFound);
        EXPECT_NE(empty.Commit(), qel::kRegistrySuccess);
    }
    ASSERT_EQ(Write("a", "v", "1"), 0);
    for (const bool commits : {false, true}) {
        std::optional<qel::RegistryTransaction> transaction(std::in_place);
        ASSERT_EQ(transaction->Begin(m_root), qel::kRegistrySuccess);
        EXPECT_EQ(Write("a", "v", "2"), 0);
        EXPECT_EQ(Write("new", "v", "2"), 0);
        EXPECT_EQ(Text("a", "v"), "2");
        EXPECT_EQ(InChild([&] { return Text("a", "v") == "1" ? 0 : 1; }), 0) << "seen before its end";
        EXPECT_EQ(commits ? transaction->Commit() : qel::kRegistrySuccess, qel::kRegistrySuccess);
        transaction.reset();
        EXPECT_EQ(Text("a", "v"), commits ? "2" : "1");
        EXPECT_EQ(Read("new", "v"), commits ? qel::kRegistrySuccess : qel::kRegistryNotFound);
    }
}

TEST_F(Registry, DatabasesOfOthers) {
    ASSERT_EQ(Write("a", "v", "1"), 0);
    const std::string name = m_registry.Folder().Posix("current-user.db");
    const std::string bytes = m_registry.Folder().Read("current-user.db");
    ::unlink(name.c_str());
    EXPECT_EQ(Read("a", "v"), qel::kRegistryNotFound);  // the open one has gone
    for (const std::string& damaged :
         {std::string(5000, 'x'), bytes.substr(0, 4096) + std::string(bytes.size() - 4096, '\xFF')}) {
        m_registry.Folder().Write("current-user.db", damaged);
        EXPECT_EQ(Read("a", "v"), qel::kRegistryDamaged);
        EXPECT_EQ(Write("a", "v", "2"), qel::kRegistryDamaged);
        EXPECT_EQ(m_registry.Folder().Read("current-user.db"), damaged);
    }
    ::unlink(name.c_str());
    m_registry.Folder().Write("current-user.db", "");  // another process is about to fill it
    EXPECT_EQ(Read("a", "v"), qel::kRegistryNotFound);
    m_registry.Folder().Write("current-user.db", bytes);
    EXPECT_EQ(Text("a", "v"), "1");

    // A user who may read the folder only.
    ::chmod(m_registry.Folder().Posix().c_str(), 0755);
    const auto asNobody = [&] {
        if (::geteuid() == 0 && ::setuid(65534) != 0) return 3;
        if (Text("a", "v") != "1") return 1;
        return Write("a", "v", "2") == qel::kRegistryAccessDenied ? 0 : 2;
    };
    EXPECT_EQ(::geteuid() == 0 ? InChild(asNobody) : 0, 0);
    EXPECT_EQ(qel::WriteRegistryValue(HKEY_LOCAL_MACHINE, "a", "", "v", {}), qel::kRegistrySuccess);
    EXPECT_EQ(Text("a", "v"), "1");
}

TEST_F(Registry, ProcessesAndThreadsWriteAtOnce) {
    constexpr int kWriters = 4;
    constexpr int kRounds = 8;
    const auto write = [&](int writer) {
        for (int round = 0; round < kRounds; ++round) {
            const std::string path = std::to_string(round);
            if (Write(path, std::to_string(writer).c_str(), std::to_string(round)) != 0) return 1;
        }
        return 0;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kWriters; ++i) {
        threads.emplace_back([&, i] { EXPECT_EQ(write(i), 0); });
    }
    std::vector<std::unique_ptr<ChildProcess>> children;  // forked while threads hold the connection
    for (int i = 0; i < kWriters; ++i) {
        children.push_back(std::make_unique<ChildProcess>([&, i] { return write(kWriters + i); }));
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& child : children) EXPECT_EQ(child->Wait(), 0);
    for (int writer = 0; writer < 2 * kWriters; ++writer) {
        for (int round = 0; round < kRounds; ++round) {
            const std::string path = std::to_string(round);
            EXPECT_EQ(Text(path, std::to_string(writer).c_str()), std::to_string(round)) << path << ' ' << writer;
        }
    }
}
