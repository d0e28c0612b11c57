#include "qellib10/platform/registry/registry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <thread>

#include "../support/registry_scope.h"
#include "../support/run_at_once.h"
#include "../support/shared_state.h"
#include "../support/test.h"
#include "qellib10/platform/database/database.h"
#include "qellib10/platform/database/database_error.h"
#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/storage/turn.h"

namespace {

std::string Nested(int levels) {
    std::string path;
    for (int i = 0; i < levels; ++i) path += "k\\";
    return path;
}

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

// In memory, where a change is quickly on the disk: what takes time are the others.
class BusyRegistry : public testing::Test {
protected:
    static LONG Set(HKEY root, int name) {
        return qel::WriteRegistryValue(root, "k", "", std::to_string(name).c_str(), {REG_SZ, "x"});
    }
    // Changes one after the other without a pause, each of which has the tree for some time.
    static int ChangeOnAndOn(int name, std::atomic<int>& changes) {
        for (;; ++changes) {
            qel::RegistryTransaction change;
            if (change.Begin(HKEY_CURRENT_USER) != 0 || Set(HKEY_CURRENT_USER, name) != 0) return 1;
            ::usleep(2000);
            if (change.Commit() != 0) return 1;
        }
    }
    // The most that @p counted grows by in one of several runs of @p body. Other programs of the machine hold it up,
    // too: the best of three counts.
    template <class Body, class Count> static double Most(const Body& body, const Count& counted, double limit) {
        double best = 1e9;
        for (int tries = 0; tries < 3 && best > limit; ++tries) {
            double most = 0;
            for (int i = 0; i < SoakCount(10); ++i) {
                const double before = counted();
                body();
                most = std::max(most, counted() - before);
            }
            best = std::min(best, most);
        }
        return best;
    }
    static double Milliseconds() {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
    }

    TempFolder m_folder{"/dev/shm"};
    EnvironmentScope m_place{"QELLIB10_REGISTRY_DIR", m_folder.Posix().c_str()};
};

}  // namespace

TEST_F(Registry, FindsNamesWhateverTheirCase) {
    EXPECT_EQ(Read("a"), qel::kRegistryNotFound);
    EXPECT_EQ(m_registry.Folder().Count(), 0);  // reading makes no database
    // clang-format off
    const char* const names[][2] = {
        {"Soft\\Key", "sOFT\\kEY"},
        {"a\\b\\", "A\\\\B"},
        {"x\x83\x5C\\y", "X\x83\x5C\\Y"},
        {"\x82\x60", "\x82\x81"},
        {"\x83\x9F", "\x83\xBF"},  // full-width, Greek
        {"\x84\x46", "\x84\x76"},
    };  // Cyrillic
    // clang-format on
    for (const auto& [written, read] : names) {
        EXPECT_EQ(Write(written, "Name", written), qel::kRegistrySuccess);
        EXPECT_EQ(Text(read, "nAME"), written);
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

TEST_F(Registry, RefusesPathsNamesAndValuesBeyondTheirLimits) {
    const Cases<std::string, LONG> cases = {{"\\a", qel::kRegistryBadPath},
                                            {std::string(255, 'n'), qel::kRegistrySuccess},
                                            {std::string(256, 'n'), qel::kRegistryInvalidParameter},
                                            {Nested(512), qel::kRegistrySuccess},
                                            {Nested(513), qel::kRegistryInvalidParameter}};
    for (const auto& [path, code] : cases) {
        EXPECT_EQ(Write(path, "", "x"), code);
        EXPECT_EQ(Read(path), code);
    }
    EXPECT_EQ(Write("v", std::string(16383, 'n').c_str(), std::string(1 << 20, 'd')), qel::kRegistrySuccess);
    EXPECT_EQ(Text("v", std::string(16383, 'N').c_str()).size(), 1u << 20);
    EXPECT_EQ(Write("v", std::string(16384, 'n').c_str(), ""), qel::kRegistryInvalidParameter);
    EXPECT_EQ(Write("v", "", std::string((1 << 20) + 1, 'd')), qel::kRegistryInvalidParameter);
    HKEY deep = nullptr, none = nullptr;
    ASSERT_EQ(qel::OpenRegistryKey(m_root, Nested(512).c_str(), deep), qel::kRegistrySuccess);
    EXPECT_EQ(qel::CreateRegistryKey(deep, "k", "", none), qel::kRegistryInvalidParameter);
    EXPECT_EQ(none, nullptr);
    for (const LONG code : {qel::kRegistrySuccess, qel::kRegistryBadHandle})
        EXPECT_EQ(qel::CloseRegistryKey(deep), code);
    EXPECT_EQ(qel::OpenRegistryKey(nullptr, "v", none), qel::kRegistryBadHandle);
    EXPECT_EQ(qel::DeleteRegistryTree(m_root, "K"), qel::kRegistrySuccess);  // all 512 levels
}

TEST_F(Registry, CopiesAndDeletesTrees) {
    for (const char* path : {"a", "a\\b", "a\\b\\c", "a\\d", "x\\b"}) ASSERT_EQ(Write(path, "v", path), 0);
    ASSERT_EQ(Write("x\\b", "own", "stays"), 0);
    HKEY a, b, x;
    ASSERT_EQ(qel::OpenRegistryKey(m_root, "a", a), 0);
    ASSERT_EQ(qel::OpenRegistryKey(a, "b", b), 0);
    ASSERT_EQ(qel::CreateRegistryKey(m_root, "X", "", x), 0);
    EXPECT_EQ(qel::CopyRegistryTree(a, x), qel::kRegistrySuccess);
    for (const std::string path : {"\\b\\c", "\\b", "\\d", ""}) EXPECT_EQ(Text("x" + path, "v"), "a" + path);
    EXPECT_EQ(Text("x\\b", "own"), "stays");
    EXPECT_EQ(qel::CopyRegistryTree(a, b), qel::kRegistryInvalidParameter);  // into itself
    EXPECT_EQ(qel::CopyRegistryTree(a, HKEY_LOCAL_MACHINE), qel::kRegistryInvalidParameter);

    EXPECT_EQ(qel::DeleteRegistryTree(m_root, "a"), qel::kRegistrySuccess);
    EXPECT_EQ(Write("a\\b", "v", "new"), qel::kRegistrySuccess);
    qel::RegistryValue value;
    for (const LONG code :
         {qel::ReadRegistryValue(b, "", "v", value), qel::WriteRegistryValue(b, "", "", "v", value),
          qel::WriteRegistryValue(b, "c", "", "v", value), qel::CopyRegistryTree(b, x), qel::CopyRegistryTree(x, b)}) {
        EXPECT_EQ(code, qel::kRegistryKeyDeleted);  // not the new key of its name
    }
}

TEST_F(Registry, TransactionsAreAllOrNothing) {
    EXPECT_EQ(qel::RegistryTransaction().Begin(m_root), qel::kRegistryNotFound);
    EXPECT_EQ(qel::RegistryTransaction().Commit(), qel::kRegistryBadHandle);
    ASSERT_EQ(Write("a", "v", "1"), 0);
    for (const bool commits : {false, true}) {
        int begun[2];
        ASSERT_EQ(::pipe(begun), 0);
        ChildProcess observer([&] {
            char byte;
            return ::read(begun[0], &byte, 1) == 1 && Text("a", "v") == "1" ? 0 : 1;
        });
        std::optional<qel::RegistryTransaction> transaction(std::in_place);
        ASSERT_EQ(transaction->Begin(m_root), qel::kRegistrySuccess);
        EXPECT_EQ(Write("a", "v", "2"), 0);
        EXPECT_EQ(Write("new", "v", "2"), 0);
        EXPECT_EQ(Text("a", "v"), "2");
        EXPECT_EQ(::write(begun[1], "", 1), 1);
        EXPECT_EQ(observer.Wait(), 0) << "seen before its end";
        EXPECT_EQ(InChild([&] { return Read("a", "v"); }), qel::kRegistryBusy) << "forked within it";
        EXPECT_EQ(commits ? transaction->Commit() : qel::kRegistrySuccess, qel::kRegistrySuccess);
        transaction.reset();
        EXPECT_EQ(Text("a", "v"), commits ? "2" : "1");
        EXPECT_EQ(Read("new", "v"), commits ? qel::kRegistrySuccess : qel::kRegistryNotFound);
    }
}

TEST_F(Registry, OnlyTheUserReadsATreeOfTheUser) {
    const auto mode = [&](const std::string& name) {
        struct stat status = {};
        return ::stat(m_registry.Folder().Posix(name).c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
    };
    const mode_t mask = ::umask(0022);
    for (const auto& [root, name, given, made, kept] : Cases<HKEY, std::string, mode_t, mode_t, mode_t>{
             {HKEY_CURRENT_USER, "current-user.db", 0664, 0600, 0664},
             {HKEY_LOCAL_MACHINE, "local-machine.db", 0600, 0644, 0600},
         }) {
        SCOPED_TRACE(name);
        qel::RegistryTransaction change;
        EXPECT_EQ(qel::WriteRegistryValue(root, "k", "", "v", {REG_SZ, "1"}), 0);
        EXPECT_EQ(mode(name), made);
        EXPECT_EQ(change.Begin(root), 0);
        EXPECT_EQ(qel::WriteRegistryValue(root, "k", "", "v", {REG_SZ, "2"}), 0);
        EXPECT_EQ(mode(name + "-journal"), made);
        EXPECT_EQ(change.Commit(), 0);
        ::chmod(m_registry.Folder().Posix(name).c_str(), given);
        EXPECT_EQ(qel::WriteRegistryValue(root, "k", "", "v", {REG_SZ, "3"}), 0);
        EXPECT_EQ(mode(name), kept);
    }
    ::umask(mask);
}

TEST_F(Registry, MemoryThatRunsOutWhileWaitingIsABusyDatabase) {
    const std::string path = m_registry.Folder().Posix("shared.db");
    qel::Database first(path, qel::DatabaseOpening::kCreating, [] { return false; });
    qel::Database second(path, qel::DatabaseOpening::kCreating, []() -> bool { throw std::bad_alloc(); });
    first.Run("BEGIN IMMEDIATE");
    EXPECT_THROW(second.Run("BEGIN IMMEDIATE"), qel::DatabaseError);
    first.Run("COMMIT");
    second.Run("BEGIN IMMEDIATE");
    EXPECT_FALSE(second.IsIdle());
}

TEST_F(Registry, ADamagedDatabaseStaysAndAReplacedOneIsReadAgain) {
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
    constexpr int kWriters = 8, kRounds = 8;
    const auto write = [&](int writer) {
        int failed = 0;
        for (int round = 0; round < kRounds; ++round)
            failed += Write(std::to_string(round), std::to_string(writer).c_str(), std::to_string(round)) != 0;
        return failed;
    };
    EXPECT_EQ(RunAtOnce(kWriters, write), 0);
    for (int i = 0; i < kWriters * kRounds; ++i) {
        const std::string round = std::to_string(i / kWriters);
        EXPECT_EQ(Text(round, std::to_string(i % kWriters).c_str()), round);
    }
}

TEST_F(BusyRegistry, NobodyWaitsLongBesideWritersWithoutAPause) {
    auto& changes = SharedWithChildren<std::atomic<int>>();
    EXPECT_EQ(Set(HKEY_CURRENT_USER, -1), 0);
    const auto set = [] { EXPECT_EQ(Set(HKEY_CURRENT_USER, -1), qel::kRegistrySuccess); };
    for (const int writers : {1, 4, 8}) {
        std::vector<std::unique_ptr<ChildProcess>> busy;
        for (int i = 0; i < writers; ++i)
            busy.push_back(std::make_unique<ChildProcess>([&changes, i] { return ChangeOnAndOn(i, changes); }));
        const auto isAtWork = [](const auto& child) { return !child->HasEnded(); };
        while (changes == 0 && std::ranges::all_of(busy, isAtWork)) std::this_thread::yield();
        // One change that each has under way, as counted, and one for which it was in line before.
        const double fair = 2 * writers;
        EXPECT_LE(Most(
                      set, [&] { return changes.load(); }, fair),
                  fair)
            << writers;
        EXPECT_TRUE(std::ranges::all_of(busy, isAtWork)) << writers;
        busy.clear();
        changes = 0;
    }
}

// Whoever is in line before is let pass, but not waited for without end: it may have been stopped.
TEST_F(BusyRegistry, AStoppedWriterInLineHoldsUpNobody) {
    EXPECT_EQ(Set(HKEY_CURRENT_USER, -1), qel::kRegistrySuccess);
    const qel::Turn stopped(m_folder.Posix(), 1);
    const double start = Milliseconds();
    EXPECT_EQ(Set(HKEY_CURRENT_USER, -1), qel::kRegistrySuccess);
    const double took = Milliseconds() - start;
    EXPECT_GE(took, 100);
    EXPECT_LT(took, 2000);
}

TEST_F(BusyRegistry, TurnsComeInTheOrderOfTheirPlaces) {
    const auto hasCome = [](const qel::Turn& turn) {
        qel::Backoff patience(std::chrono::milliseconds(2));
        return turn.Await(patience);
    };
    const qel::Turn ofAnotherLine(m_folder.Posix(), 0);
    std::optional<ChildProcess> killed(std::in_place, [&] {
        const qel::Turn first(m_folder.Posix(), 1);
        m_folder.Write("in line", "");
        return ::pause();
    });
    while (!m_folder.Has("in line")) std::this_thread::yield();
    std::optional<qel::Turn> second(std::in_place, m_folder.Posix(), 1);
    const qel::Turn third(m_folder.Posix(), 1);
    EXPECT_FALSE(hasCome(*second));
    killed.reset();
    EXPECT_TRUE(hasCome(*second));
    EXPECT_FALSE(hasCome(third));
    second.reset();
    EXPECT_TRUE(hasCome(third));
    EXPECT_TRUE(hasCome(qel::Turn(m_folder.Posix("no folder"), 1)));
}

TEST_F(BusyRegistry, AForkWaitsForNoMoreThanAChangeOfEachTree) {
    constexpr double kLongest = 100;  // ms
    std::atomic<bool> done = false;
    std::vector<std::thread> busy;
    for (int i = 0; i < 8; ++i) {
        busy.emplace_back([&done, i] {
            while (!done) EXPECT_EQ(Set(i % 2 == 0 ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE, i), 0);
        });
    }
    EXPECT_LE(Most([] { const ChildProcess child([] { return 0; }); }, Milliseconds, kLongest), kLongest);
    done = true;
    for (std::thread& thread : busy) thread.join();
}

// The owner that a fork waits for may itself wait for a thread that wants another lock.
TEST(ForkSafeLock, AWaitingForkKeepsNobodyFromOtherLocks) {
    static qel::ForkSafeLock& held = *new qel::ForkSafeLock;
    static qel::ForkSafeLock& other = *new qel::ForkSafeLock;
    std::unique_lock owner(held);
    std::thread forking([] { EXPECT_EQ(InChild([] { return 7; }), 7); });
    ::usleep(50'000);  // the fork waits now
    std::atomic<bool> hasOther = false;
    std::thread wanting([&] {
        const std::lock_guard guard(other);
        hasOther = true;
    });
    for (int i = 0; i < 5000 && !hasOther; ++i) ::usleep(1000);
    EXPECT_TRUE(hasOther);
    owner.unlock();
    forking.join();
    wanting.join();
}
