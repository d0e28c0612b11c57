#include "qellib10/runtime/memory_mapped_file.h"

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <thread>

#include "../support/child_process.h"
#include "../support/shared_state.h"
#include "../support/test.h"
#include "qellib10/platform/sync/named_mutex.h"
#include "qellib10/runtime/check_repeat_exec.h"

namespace {

constexpr DWORD kRead = 4, kWrite = 2;

char* Bytes(void* view) { return static_cast<char*>(view); }

bool IsTaken(const std::string& name) { return CCheckRepeatExec().CheckRepeatExecute(name.c_str()) == 1; }

// Cuts the file of an object that is open, as only a program that does not know what it does would.
void CutFile(const std::string& name) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closed;
        const auto file = std::filesystem::read_symlink(entry, closed);
        if (!closed && file.filename() == "n" + name) std::filesystem::resize_file(file, 0);
    }
}

}  // namespace

TEST(MemoryMappedFile, ABlockIsZeroAndKeepsItsSize) {
    const std::string name = NameOfOurOwn("block");
    CMemoryMappedFile block;
    EXPECT_EQ(block.GetDataPtr(kWrite, 0), nullptr);
    DWORD written = 7;
    EXPECT_EQ(Line({block.SetData(&written, 4, &written), written}), "0 7");
    for (const auto& [size, error] : Cases<DWORD, DWORD>{
             {0, 87},
             {10'000, 0},
         }) {
        EXPECT_EQ(block.Open(6, name.c_str(), size), error == 0);
        EXPECT_EQ(block.GetLastError(), error);
    }
    char* bytes = Bytes(block.GetDataPtr(kWrite, 0));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::string(bytes, 10'000), std::string(10'000, '\0'));
    std::memset(bytes, 'x', 10'000);
    EXPECT_EQ(Line({block.SetData(&written, 4, &written), written}), "0 0");
    EXPECT_EQ(block.GetLastError(), 6u);
    for (const DWORD access : {0u, 1u, 4u, 0x20u}) {  // readable alone
        EXPECT_EQ(InChild([&] {
                      CMemoryMappedFile other;
                      other.Open(6, name.c_str(), 1);  // the existing one, whatever the size
                      if (other.GetDataPtr(access, 10'001) != nullptr || other.GetLastError() != 5) return 1;
                      ::signal(SIGSEGV, [](int) { ::_exit(42); });
                      char* view = Bytes(other.GetDataPtr(access, 10'000));
                      return view[9'999] == 'x' ? *view = 'y' : 2;
                  }),
                  42);
    }

    EXPECT_EQ(block.Open(1, "never", 0), 1);  // an open object takes the new name and access only
    EXPECT_EQ(block.GetName(), "never");
    EXPECT_EQ(block.GetAccess(), 1u);
    bytes = Bytes(block.GetDataPtr(kWrite, 10'000));
    EXPECT_EQ(bytes[9'999], 'x');

    block.Close();
    EXPECT_EQ(block.GetDataPtr(kWrite, 0), nullptr);
    CMemoryMappedFile fresh;  // the name is free
    ASSERT_EQ(fresh.Open(6, name.c_str(), 20'000), 1);
    EXPECT_EQ(Bytes(fresh.GetDataPtr(kRead, 20'000))[0], 0);
    EXPECT_EQ(bytes[0], 'x');  // and the view is still there
}

TEST(MemoryMappedFile, CopiesShareWhatIsClosedOnce) {
    const std::string name = NameOfOurOwn("copied");
    CAutoLockedMemoryMappedFile block;
    ASSERT_EQ(block.Open(6, name.c_str(), 100), 1);
    ASSERT_NE(block.GetDataPtr(kWrite, 0), nullptr);
    std::make_unique<CAutoLockedMemoryMappedFile>(block).reset();
    EXPECT_FALSE(IsTaken("MM::" + name));
    CMemoryMappedFile other;  // has what the copy has left
    ASSERT_EQ(other.Open(6, name.c_str(), 200), 1);
    block.GetDataPtrUnmap();
    EXPECT_EQ(block.GetDataPtr(kWrite, 0), nullptr);
    EXPECT_EQ(block.GetLastError(), 6u);
    block.Close();
    EXPECT_NE(other.GetDataPtr(kWrite, 200), nullptr);
    EXPECT_TRUE(HoldsInChild([&] {
        EXPECT_EQ(Line({other.GetDataPtr(kRead, 0) == nullptr, other.GetLastError()}), "1 6");
    }));
    EXPECT_NE(other.GetDataPtr(kWrite, 200), nullptr);
}

TEST(AutoLockedMemoryMappedFile, HoldsTheLockExactlyWhileItIsMapped) {
    const std::string name = NameOfOurOwn("locked"), lock = "MM::" + name;
    const auto isLocked = [&] {  // as another process sees it
        return InChild([&] {
                   return qel::WaitForMutex(qel::CreateNamedMutex(lock.c_str()).handle, 0) == qel::kWaitTimeout;
               }) == 1;
    };
    std::optional<CAutoLockedMemoryMappedFile> block(std::in_place);
    EXPECT_EQ(block->GetDataPtr(kWrite, 0), nullptr);
    ASSERT_EQ(block->Open(6, name.c_str(), 100), 1);
    EXPECT_FALSE(isLocked());
    for (const DWORD size : {0u, 100u, 1u, 101u, 0u}) {  // each gives the lock back and takes it again
        EXPECT_EQ(block->GetDataPtr(kWrite, size) == nullptr, size > 100);
        EXPECT_TRUE(size <= 100 || block->GetLastError() == 5);
        EXPECT_EQ(isLocked(), size <= 100);
    }
    block->GetDataPtrUnmap();
    EXPECT_FALSE(IsTaken(lock));
    EXPECT_NE(block->GetDataPtr(kWrite, 0), nullptr);
    block.reset();
    EXPECT_FALSE(isLocked());

    // No mutex can have such a name; waiting for one would never end.
    for (const std::string& bad : {std::string("Local\\x"), std::string(257, 'x')}) {
        block.emplace();
        ASSERT_EQ(block->Open(6, bad.c_str(), 1), 1);
        EXPECT_EQ(block->GetDataPtr(kWrite, 0), nullptr);
        EXPECT_EQ(block->GetLastError(), bad.size() > 256 ? 206u : 3u);
    }
}

TEST(AutoLockedMemoryMappedFile, ExactlyOneHolderAfterADeadOneSeesIt) {
    const std::string name = NameOfOurOwn("left");
    CAutoLockedMemoryMappedFile block;
    ASSERT_EQ(block.Open(6, name.c_str(), 100), 1);
    const auto runAnotherProgram = [] {
        constexpr const char* kOther = "--gtest_filter=CheckRepeatExec.AKilledInstanceLeavesNoMark";
        return ::execl("/proc/self/exe", "other", kOther, "--gtest_brief=1", nullptr);
    };
    const auto isToldAfter = [&](const auto& leave) {
        auto& isMapped = SharedWithChildren<std::atomic<bool>>();
        ChildProcess holder([&] {
            CAutoLockedMemoryMappedFile own;
            if (own.Open(6, name.c_str(), 100) == 0 || own.GetDataPtr(kWrite, 0) == nullptr) return 1;
            isMapped = true;
            return leave(own);
        });
        while (!isMapped) std::this_thread::yield();
        holder.Wait();
        EXPECT_EQ(InChild(runAnotherProgram), 0);  // which removes what dead ones have left
        block.GetDataPtr(kWrite, 0);
        return qel::WasAbandoned(block);
    };
    EXPECT_FALSE(qel::WasAbandoned(block));
    EXPECT_FALSE(isToldAfter([](auto& own) { return own.GetDataPtrUnmap(), 0; }));
    block.GetDataPtrUnmap();
    EXPECT_TRUE(isToldAfter([](auto&) { return ::kill(::getpid(), SIGKILL); }));
    block.GetDataPtr(kWrite, 0);
    EXPECT_FALSE(qel::WasAbandoned(block));

    block.GetDataPtrUnmap();

    // One that waits meanwhile.
    auto& isMapped = SharedWithChildren<std::atomic<bool>>();
    const auto map = [&](CAutoLockedMemoryMappedFile& own) {
        return own.Open(6, name.c_str(), 100) != 0 && own.GetDataPtr(kWrite, 0) != nullptr;
    };
    ChildProcess holder([&] {
        CAutoLockedMemoryMappedFile own;
        isMapped = map(own);
        return ::pause();
    });
    while (!isMapped) std::this_thread::yield();
    ChildProcess waiting([&] {
        CAutoLockedMemoryMappedFile own;
        return map(own) && qel::WasAbandoned(own) ? 1 : 0;
    });
    holder.Kill();
    EXPECT_EQ(waiting.Wait(), 1);
}

TEST(AutoLockedMemoryMappedFile, ACutFileIsRefused) {
    const std::string name = NameOfOurOwn("cut");
    CAutoLockedMemoryMappedFile block;
    ASSERT_EQ(block.Open(6, name.c_str(), 100'000), 1);
    ASSERT_NE(block.GetDataPtr(kWrite, 0), nullptr);
    block.GetDataPtrUnmap();
    CutFile(name);
    CutFile("MM%3A%3A" + name);
    EXPECT_EQ(block.GetDataPtr(kWrite, 0), nullptr);
    EXPECT_EQ(block.GetLastError(), 1006u);
    EXPECT_EQ(InChild([&] { return CMemoryMappedFile().Open(6, name.c_str(), 1); }), 0);
    block.Close();
    ASSERT_EQ(block.Open(6, name.c_str(), 100), 1);
    EXPECT_NE(block.GetDataPtr(kWrite, 100), nullptr);
    CutFile("MM%3A%3A" + name);  // the lock that is held
    block.GetDataPtrUnmap();
    EXPECT_NE(block.GetDataPtr(kWrite, 100), nullptr);
}

// Processes work on two blocks under their locks while one after the other is killed. One of the blocks is held for all
// the time, so its bytes must always be what the last one wrote; the other is new, and zero, whenever all have died.
TEST(AutoLockedMemoryMappedFile, HoldersMayBeKilledAtAnyMoment) {
    struct State {
        struct Seen {
            std::atomic<int> owner, value, isTorn;
        } seen[2];
        std::atomic<int> faults, rounds;
    };
    auto& state = SharedWithChildren<State>();
    const std::string names[] = {NameOfOurOwn("kept"), NameOfOurOwn("new")};
    CMemoryMappedFile kept;
    ASSERT_EQ(kept.Open(6, names[0].c_str(), sizeof(int)), 1);

    const auto work = [&]() -> int {
        std::srand(static_cast<unsigned>(::getpid()));
        for (;;) {
            const int which = std::rand() & 1;
            CAutoLockedMemoryMappedFile block;
            if (block.Open(6, names[which].c_str(), sizeof(int)) == 0) ++state.faults;
            for (int turns = std::rand() % 4; turns > 0; --turns) {
                auto* value = static_cast<int*>(block.GetDataPtr(kWrite, sizeof(int)));
                auto& seen = state.seen[which];
                if (value == nullptr || seen.owner.exchange(::getpid()) != 0) ++state.faults;
                const bool isNew = which == 1 && *value == 0;
                if (seen.isTorn.exchange(0) == 0 && *value != seen.value && !isNew) ++state.faults;
                seen.value = ++*value;
                seen.owner = 0;
                ++state.rounds;
                block.GetDataPtrUnmap();
            }
        }
    };
    std::vector<std::unique_ptr<ChildProcess>> workers(6);
    for (auto& worker : workers) worker = std::make_unique<ChildProcess>(work);
    std::srand(SoakSeed());
    const int wanted = SoakCount(250);
    int kills = 0;
    for (; !workers.empty(); ++kills) {
        ::usleep(static_cast<useconds_t>(std::rand() % 4000));
        std::swap(workers.back(), workers[static_cast<std::size_t>(std::rand()) % workers.size()]);
        const pid_t id = workers.back()->Id();
        ::kill(id, SIGSTOP);  // stopped first: a process that is being killed lets go before it is seen dead
        EXPECT_EQ(::waitpid(id, nullptr, WUNTRACED), id);
        for (auto& seen : state.seen) {
            if (seen.owner == id) seen.isTorn = 1, seen.owner = 0;
        }
        workers.pop_back();
        if (kills < wanted) workers.push_back(std::make_unique<ChildProcess>(work));
    }
    EXPECT_EQ(state.faults, 0);
    EXPECT_GT(state.rounds, kills);
    CMemoryMappedFile fresh;
    ASSERT_EQ(fresh.Open(6, names[1].c_str(), sizeof(int)), 1);
    EXPECT_EQ(*static_cast<int*>(fresh.GetDataPtr(kRead, 0)), 0);
    EXPECT_FALSE(IsTaken("MM::" + names[0]));
}

TEST(CheckRepeatExec, TheFirstKeepsTheNameAsLongAsItLives) {
    const std::string name = NameOfOurOwn("instance");
    std::optional<CCheckRepeatExec> instance(std::in_place);
    for (const int answer : {0, 1}) EXPECT_EQ(instance->CheckRepeatExecute(name.c_str()), answer);
    EXPECT_EQ(InChild([&] { return IsTaken(name); }), 1);
    EXPECT_TRUE(IsTaken(name));  // and closing what was opened took nothing away

    const CCheckRepeatExec copy(*instance);
    instance.reset();
    for (const std::string& free : {name, std::string()})
        EXPECT_EQ(InChild([&] { return IsTaken(free) || IsTaken(free); }), 0);
    // Nobody is the first where that cannot be known.
    EXPECT_EQ(InChild([] { return IsTaken("a\\b"); }), 1);
    CMemoryMappedFile block;
    ASSERT_EQ(block.Open(6, (name + "-block").c_str(), 1), 1);
    EXPECT_TRUE(IsTaken(name + "-block"));
    CCheckRepeatExec other;
    ASSERT_EQ(other.CheckRepeatExecute(name.c_str()), 0);
    EXPECT_TRUE(HoldsInChild([&] {
        rlimit usual{};
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
        const rlimit few = {0, usual.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        const bool isTaken = IsTaken(name), isFreeTaken = IsTaken(name + "-free");
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);  // an assertion may need files
        EXPECT_TRUE(isTaken);
        EXPECT_TRUE(isFreeTaken);
    }));
}

TEST(CheckRepeatExec, AKilledInstanceLeavesNoMark) {
    const std::string name = NameOfOurOwn("killed");
    auto& isMarked = SharedWithChildren<std::atomic<bool>>();
    ChildProcess instance([&] {
        CCheckRepeatExec check;
        if (check.CheckRepeatExecute(name.c_str()) != 0) return 1;
        // A process made by this one does not have its mark.
        const ChildProcess bystander([&] {
            isMarked = true;
            return ::sleep(5);
        });
        return ::pause();
    });
    while (!isMarked) ::usleep(200);
    EXPECT_TRUE(IsTaken(name));
    instance.Kill();
    EXPECT_FALSE(IsTaken(name));
}
