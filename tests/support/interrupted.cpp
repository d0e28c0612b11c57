#include "interrupted.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <random>
#include <set>

#include "disk_record.h"
#include "line.h"
#include "qellib10/platform/storage/file_exception.h"
#include "soak.h"

Place::Place() : TempFolder("/dev/shm") {
    Write("a", "new");
    Write("b", "former");
    for (const char* name : {"a", "b"}) ::chmod(Posix(name).c_str(), 0604);
}

std::string Place::Files(About about, const std::string& ignored) const {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Posix())) {
        const std::string name = entry.path().lexically_relative(Posix());
        const auto rights = static_cast<unsigned>(entry.status().permissions());
        const std::string bytes = about == About::kNames ? "" : Read(name);
        if (name == ignored) continue;
        files.insert(name + ' ' + std::to_string(rights) + ' ' +
                     (about == About::kSizes ? std::to_string(bytes.size()) : bytes) + '\n');
    }
    return std::accumulate(files.begin(), files.end(), std::string());
}

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

std::vector<Operation> WithPromise(std::span<const Operation> operations, Cut without) {
    std::vector<Operation> found(operations.begin(), operations.end());
    std::erase_if(found, [&](const Operation& operation) {
        return operation.mayBePart || operation.cut == Cut::kAnything || operation.cut == without;
    });
    return found;
}

// Starts the program once more, in the care of the object that lets calls fail.
void Interrupted::SetUpTestSuite() {
    if (::dlsym(RTLD_DEFAULT, "FailCall") != nullptr || std::getenv("LD_PRELOAD") != nullptr) return;
    ::setenv("LD_PRELOAD", QELLIB10_FAILING_CALLS, 1);
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    const std::vector<std::string> arguments = testing::internal::GetArgvs();
    std::vector<char*> pointers;
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    ::execv("/proc/self/exe", pointers.data());
}

void Interrupted::SetUp() {
    m_fail = reinterpret_cast<decltype(m_fail)>(::dlsym(RTLD_DEFAULT, "FailCall"));
    m_failFrom = reinterpret_cast<decltype(m_failFrom)>(::dlsym(RTLD_DEFAULT, "FailCallsFrom"));
    m_left = reinterpret_cast<decltype(m_left)>(::dlsym(RTLD_DEFAULT, "CallsLeft"));
    m_watch = reinterpret_cast<decltype(m_watch)>(::dlsym(RTLD_DEFAULT, "WatchDisk"));
    ASSERT_EQ(Line({m_fail == nullptr, m_failFrom == nullptr, m_left == nullptr, m_watch == nullptr}), "0 0 0 0");
}

bool Interrupted::Run(const Place& place) const {
    try {
        return GetParam().run(place) != 0;
    } catch (const CFileException&) {
        return false;
    }
}

TEST_P(FailingCalls, LeaveTheOldOrTheNew) {
    const Operation& operation = GetParam();
    std::string before;
    std::string after;
    {
        const Place place;
        operation.prepare(place);
        before = operation.state(place);
    }
    {
        const Place place;
        operation.prepare(place);
        ASSERT_TRUE(Run(place));
        after = operation.state(place);
    }
    for (int failure = 0; failure < 4; ++failure) {
        for (int number = 1, left = 0; left == 0; ++number) {
            SCOPED_TRACE("failure " + std::to_string(failure) + " of call " + std::to_string(number));
            const Place place;
            operation.prepare(place);
            m_fail(static_cast<CallFailure>(failure), number);
            const bool done = Run(place);
            left = m_left();
            m_fail(CallFailure::kEio, 0);
            const std::string now = operation.state(place);
            EXPECT_TRUE(now == after || (!done && (operation.mayBePart || now == before))) << done << '\n' << now;
            EXPECT_TRUE(done || left == 0);
            if (left == 0) Tried("failed calls");
            ASSERT_TRUE(left == 0 || number > 1 || failure != 0);  // the walk has met something
        }
    }
}

namespace {

// What was being written next to its target belongs to nobody after a power cut.
void RemoveUnfinished(const Place& place) {
    for (const auto& entry : std::filesystem::directory_iterator(place.Posix())) {
        if (entry.path().extension() == ".tmp") std::filesystem::remove(entry.path());
    }
}

}  // namespace

// From some call on each fails, also those that undo the operation.
TEST_P(DeadDisks, LeaveTheOldOrTheNew) {
    const Operation& operation = GetParam();
    int calls = 0;
    const auto stateAfterDeathAt = [&](int number) {
        const Place place;
        operation.prepare(place);
        m_failFrom(CallFailure::kEio, number);
        const bool done = Run(place);
        calls = number - m_left();
        m_fail(CallFailure::kEio, 0);
        RemoveUnfinished(place);
        return std::pair(operation.stateAfterCut(place), done);
    };
    const std::string before = stateAfterDeathAt(1).first;
    const std::string after = stateAfterDeathAt(100'000).first;
    EXPECT_GT(calls, 1);
    for (int number = calls; number > 1; --number) {
        const auto [now, done] = stateAfterDeathAt(number);
        EXPECT_TRUE(now == after || (!done && now == before)) << "from call " << number << '\n' << now;
    }
}

TEST_P(PowerCuts, LeaveTheOldOrTheNew) {
    const Operation& operation = GetParam();
    const Place place;
    operation.prepare(place);
    DiskRecord disk(place);
    m_watch(DiskRecord::Take);
    const bool done = Run(place);
    m_watch(nullptr);
    ASSERT_TRUE(done);
    ASSERT_GT(disk.Calls(), 0u);
    const std::string after = operation.stateAfterCut(place);
    std::minstd_rand random(SoakSeed());
    disk.CutAfter(0, random);
    const std::string before = operation.stateAfterCut(place);
    const int tries = SoakCount(12);
    for (std::size_t calls = 1; calls <= disk.Calls(); ++calls) {
        const bool isOver = calls == disk.Calls() && operation.cut != Cut::kOldOrNew;
        if (operation.cut == Cut::kOnlyOnceDone && !isOver) continue;
        Tried("power cuts", tries);
        for (int i = 0; i < tries; ++i) {
            disk.CutAfter(calls, random);
            RemoveUnfinished(place);
            const std::string now = operation.stateAfterCut(place);
            ASSERT_TRUE(now == after || (!isOver && now == before)) << "after call " << calls << '\n' << now;
        }
    }
}
