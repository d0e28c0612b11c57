#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <functional>
#include <thread>

#include "../support/child_process.h"
#include "../support/shared_state.h"
#include "../support/test.h"
#include "qellib10/platform/sync/named_mutex.h"
#include "qellib10/platform/sync/shared_memory.h"

namespace {

using namespace qel;

HANDLE NewMutex(const std::string& name) { return CreateNamedMutex(name.c_str()).handle; }

DWORD WaitInThread(HANDLE mutex, DWORD milliseconds, bool release) {
    DWORD result = 0;
    std::thread([&] {
        result = WaitForMutex(mutex, milliseconds);
        if (release && result != kWaitTimeout) ReleaseNamedMutex(mutex);
    }).join();
    return result;
}

// What @p body returns in a child with a small /dev/shm of its own, 77 without the right to mount it.
int WithSmallMemory(const std::function<int()>& body) {
    return InChild([&] {
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return 77;
        if (::mount("tmpfs", "/dev/shm", "tmpfs", 0, "size=128k,mode=1777") != 0) return 77;
        return body();
    });
}

constexpr uid_t kUser = 4321;

}  // namespace

TEST(NamedObjects, NamesAreTheSystems) {
    const CodePageScope japanese(qel::kCodePageJapanese);
    const std::string own = NameOfOurOwn("name"), longName = std::string(259 - own.size(), '/') + own;
    for (const auto& [error, names] : Cases<DWORD, std::vector<std::string>>{
             {0, {own, own + "/../../x", own + "MM::x.%41 \n\x7f\xff", longName + "a", longName + "b"}},
             {0, {own + "NAME", own + "name", "Global\\" + own, own + "\x83\x5c"}},  // not a backslash: a trail byte
             {3, {own + "\\x", "Local\\Global\\" + own, "global\\" + own}},
             {6, {"Local\\"}},
             {206, {longName + "bc"}},
         }) {
        for (const std::string& name : names) {  // all are kept, so each is another's only if it were the same
            SCOPED_TRACE(name);
            EXPECT_EQ(OpenNamedMutex(name.c_str()), nullptr);
            EXPECT_EQ(LastError(), error == 0 ? 2 : error);
            EXPECT_EQ(NewMutex(name) != nullptr, error == 0);
            EXPECT_EQ(LastError(), error);
            EXPECT_EQ(InChild([&] { return CreateNamedMutex(name.c_str()).existed; }), error == 0);
        }
    }
    EXPECT_TRUE(CreateNamedMutex(("Local\\" + own).c_str()).existed);
    EXPECT_EQ(LastError(), 183u);
    const auto asBlock = [&] { return CreateSharedMemory(own.c_str(), 1).handle == nullptr ? LastError() : 0; };
    EXPECT_EQ(asBlock(), 6u);  // one namespace for all kinds
    EXPECT_EQ(InChild(asBlock), 6);

    for (const auto& [name, error] : Cases<const char*, DWORD>{
             {nullptr, 87},
             {"", 6},
         })
        EXPECT_EQ(Line({OpenNamedMutex(name) == nullptr, LastError()}), Line({1, error}));
    const HANDLE large = CreateSharedMemory("", 5000).handle, small = CreateSharedMemory(nullptr, 1).handle;
    EXPECT_EQ(MapView(small, true, 2), nullptr);
    EXPECT_NE(MapView(large, true, 5000), nullptr);
    EXPECT_EQ(Line({CloseHandle(large), CloseHandle(large)}), "1 0");
}

TEST(NamedMutex, BelongsToAThread) {
    const HANDLE mutex = NewMutex(NameOfOurOwn("mutex"));
    EXPECT_EQ(WaitForMutex(mutex, 0), kWaitObject);
    EXPECT_EQ(WaitForMutex(mutex, kInfinite), kWaitObject);  // owned twice
    for (const DWORD expected : {kWaitTimeout, kWaitTimeout, kWaitObject}) {
        EXPECT_EQ(WaitInThread(mutex, 0, true), expected);
        EXPECT_EQ(WaitInThread(mutex, 20, true), expected);
        std::thread([&] { EXPECT_FALSE(ReleaseNamedMutex(mutex)); }).join();
        EXPECT_EQ(ReleaseNamedMutex(mutex), expected != kWaitObject);
    }
    EXPECT_EQ(LastError(), 288u);

    // Its thread ends: the next one owns it and learns of the end.
    EXPECT_EQ(WaitInThread(mutex, 0, false), kWaitObject);
    EXPECT_EQ(WaitForMutex(mutex, 1000), kWaitAbandoned);
    EXPECT_TRUE(ReleaseNamedMutex(mutex));
    EXPECT_EQ(WaitInThread(mutex, 0, true), kWaitObject);

    EXPECT_EQ(MapView(mutex, false, 0), nullptr);
    EXPECT_EQ(LastError(), 6u);
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_EQ(WaitForMutex(mutex, 0), kWaitFailed);
}

TEST(NamedMutex, MayBeClosedWhileItIsOwnedOrWaitedFor) {
    const std::string name = NameOfOurOwn("closed");
    for (int turn = 0; turn < 3; ++turn) {
        const HANDLE mutex = NewMutex(name);
        EXPECT_EQ(WaitForMutex(mutex, 0), kWaitObject);
        std::thread waiter([&] {
            EXPECT_TRUE(CloseHandle(NewMutex(name + "-other")));
            EXPECT_TRUE(WaitForMutex(mutex, kInfinite) == kWaitObject || LastError() == 6);
        });
        ::usleep(10'000);
        EXPECT_EQ(Line({ReleaseNamedMutex(mutex), CloseHandle(mutex)}), "1 1");
        waiter.join();
        // A new one under the name is free, and so is the list of what this thread owns.
        const HANDLE fresh = NewMutex(name);
        EXPECT_EQ(WaitForMutex(fresh, 0), kWaitObject);
        EXPECT_TRUE(CloseHandle(fresh));
        EXPECT_EQ(OpenNamedMutex(name.c_str()), nullptr);
        EXPECT_EQ(LastError(), 2u);
        const HANDLE left = NewMutex(name);
        EXPECT_EQ(InChild([&] { return static_cast<int>(WaitForMutex(NewMutex(name), 0)); }), 0);
        EXPECT_TRUE(CloseHandle(left));  // the last one, of a mutex whose owner is dead
    }
}

// Everybody may make folders there: another user's, a file, a link and one that is open to others are passed over, by
// every program alike, in a session or not.
TEST(NamedObjects, AnothersFolderOrASessionDoesNotMakeTwoFirstInstances) {
    const std::string first = "/dev/shm/qellib10-" + std::to_string(kUser);
    const TempFolder session;
    ASSERT_EQ(::chown(session.Posix().c_str(), kUser, kUser) == 0, ::geteuid() == 0);
    const auto asUser = [](auto&& body) { return InChild([&] { return ::seteuid(kUser) == 0 ? body() : 98; }); };
    const auto isThere = [](const std::string& path) { return ::access(path.c_str(), F_OK) == 0; };
    const auto mark = [&] {
        const HANDLE mutex = CreateNamedMutex("instance").handle;
        const EnvironmentScope other("XDG_RUNTIME_DIR", session.Posix().c_str());
        return mutex != nullptr ? InChild([] { return OpenNamedMutex("instance") != nullptr; }) : 9;
    };
    const auto outcome = WithSmallMemory([&] {
        const EnvironmentScope none("XDG_RUNTIME_DIR", nullptr);
        if (asUser(mark) != 1 || !isThere(first) || ::system(("rm -r " + first).c_str()) != 0) return 1;
        // The last name is free, and is kept also once one before it has become free.
        if (::mkdir(first.c_str(), 0700) != 0 || ::close(::creat((first + "-1").c_str(), 0600)) != 0) return 2;
        if (::symlink(first.c_str(), (first + "-2").c_str()) != 0 || ::mkdir((first + "-3").c_str(), 0700) != 0)
            return 3;
        if (::chown((first + "-3").c_str(), kUser, kUser) != 0 || ::chmod((first + "-3").c_str(), 0755) != 0) return 4;
        if (asUser(mark) != 1 || !isThere(first + "-4")) return 5;
        if (::rmdir(first.c_str()) != 0 || asUser(mark) != 1 || isThere(first)) return 6;
        // Where nothing can be known, nobody gets "there is none".
        if (::system(("rm -r " + first + "-*").c_str()) != 0) return 7;
        for (int i = 0; i < 16; ++i) ::mkdir((first + (i == 0 ? "" : "-" + std::to_string(i))).c_str(), 0700);
        return asUser([] { return CreateNamedMutex("instance").handle == nullptr && LastError() == 5 ? 0 : 8; });
    });
    if (outcome == 77) GTEST_SKIP() << "needs the right to mount";
    EXPECT_EQ(outcome, 0);
}

// As a user whose folder is not there yet.
TEST(NamedObjects, TheirFolderIsCleanedAndMadeAgain) {
    const std::string folder = "/dev/shm/qellib10-" + std::to_string(kUser);
    const auto outcome = WithSmallMemory([&] {
        const std::string stale = folder + "/nkilled", other = folder + "/nother";
        const auto error = [] { return CreateSharedMemory("block", 4096).handle == nullptr ? LastError() : 0; };
        if (::mkdir(folder.c_str(), 0700) != 0 || ::chown(folder.c_str(), kUser, kUser) != 0) return 2;
        if (::seteuid(kUser) != 0 || ::close(::creat(stale.c_str(), 0600)) != 0) return 4;
        if (::mkdir(other.c_str(), 0700) != 0) return 5;  // not of our making
        if (error() != 0 || ::access(stale.c_str(), F_OK) == 0 || ::access(other.c_str(), F_OK) != 0) return 6;
        if (CreateSharedMemory("large", 200'000).handle != nullptr || LastError() != 8) return 7;
        if (::access((folder + "/nlarge").c_str(), F_OK) == 0) return 8;
        // The folder is deleted at the end of a session; programs that go on make it again.
        if (::system(("rm -r " + folder).c_str()) != 0 || CreateSharedMemory("after", 1).existed) return 9;
        return ::access((folder + "/nafter").c_str(), F_OK);
    });
    if (outcome == 77) GTEST_SKIP() << "needs the right to mount";
    EXPECT_EQ(outcome, 0);
}
