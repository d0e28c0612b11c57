#include "qellib10/platform/storage/share_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "../support/child_process.h"
#include "../support/temp_folder.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/replacement.h"

namespace {

constexpr UINT kAccess[] = {CFile::modeRead, CFile::modeWrite, CFile::modeReadWrite};
constexpr UINT kShare[] = {CFile::shareExclusive, CFile::shareDenyWrite, CFile::shareDenyRead, CFile::shareDenyNone};
constexpr int kModes = 12;

constexpr UINT ModeOf(int number) { return kAccess[number / 4] | kShare[number % 4]; }

// Which opening (column) the platform allows beside which (row), in the order of ModeOf: shared nothing, reading,
// writing, both, for each of reading, writing, both.
constexpr const char* kAllowed[kModes] = {
    "............",  // R
    ".+.+........",  // R, shares reading
    ".....+.+....",  //
    ".+.+.+.+.+.+",  //
    "............",  // W
    "..++........",  //
    "......++....",  //
    "..++..++..++",  //
    "............",  // RW
    "...+........",  //
    ".......+....",  //
    "...+...+...+",
};

// The platform's number for what @p body was refused with, 0 when it was not.
template <class Body> LONG CodeOf(Body&& body) {
    try {
        body();
        return 0;
    } catch (const CFileException& error) {
        return error.m_lOsError;
    }
}

// A process that holds an opening from when the object is made until it goes.
class Holder {
public:
    Holder(const CString& path, UINT flags)
        : m_pipe(), m_child([&] {
              CFile file(path, flags);
              (void)!::write(m_pipe.ends[1], "", 1);
              ::pause();
              return 0;
          }) {
        char ready;
        ::close(m_pipe.ends[1]);
        EXPECT_EQ(::read(m_pipe.ends[0], &ready, 1), 1);
    }
    ~Holder() { ::close(m_pipe.ends[0]); }
    void Kill() { m_child.Kill(); }

private:
    struct Pipe {
        Pipe() { EXPECT_EQ(::pipe(ends), 0); }
        int ends[2] = {};
    };
    Pipe m_pipe;
    ChildProcess m_child;
};

std::string AllowedBeside(const CString& path) {
    std::string allowed;
    for (int number = 0; number < kModes; ++number) {
        CFile file;
        CFileException error;
        allowed += file.Open(path, ModeOf(number), &error) ? '+' : '.';
        EXPECT_TRUE(error.m_cause == CFileException::none || error.m_lOsError == 32);
    }
    return allowed;
}

}  // namespace

TEST(ShareLock, HoldsWithinAProcessAndAcross) {
    const TempFolder folder;
    folder.Write("a", "x");
    const CString path = folder.Path("a");
    for (int number = 0; number < kModes; ++number) {
        SCOPED_TRACE(number);
        {
            const CFile file(path, ModeOf(number));
            EXPECT_EQ(AllowedBeside(path), kAllowed[number]);
        }
        const Holder holder(path, ModeOf(number));
        EXPECT_EQ(AllowedBeside(path), kAllowed[number]);
    }
    EXPECT_EQ(AllowedBeside(path), std::string(kModes, '+'));
    EXPECT_EQ(folder.Count(), 1);  // no lock file
}

TEST(ShareLock, NoShareBitsAreExclusive) {
    const TempFolder folder;
    folder.Write("a", "x");
    const CFile file(folder.Path("a"), CFile::modeRead);
    EXPECT_EQ(AllowedBeside(folder.Path("a")), std::string(kModes, '.'));
}

TEST(ShareLock, EndsWithTheLastDuplicateAndWithTheProcess) {
    const TempFolder folder;
    folder.Write("a", "x");
    const CString path = folder.Path("a");
    CFile file(path, CFile::modeReadWrite | CFile::shareExclusive);
    std::unique_ptr<CFile> copy = file.Duplicate();
    file.Close();
    EXPECT_FALSE(file.Open(path, CFile::modeRead));
    copy.reset();
    EXPECT_TRUE(file.Open(path, CFile::modeRead));
    file.Close();

    Holder holder(path, CFile::modeReadWrite | CFile::shareExclusive);
    EXPECT_FALSE(file.Open(path, CFile::modeRead | CFile::shareDenyNone));
    holder.Kill();
    EXPECT_TRUE(file.Open(path, CFile::modeRead | CFile::shareDenyNone));

    // A child before its exec has copies of all descriptors; a file that is closed is free all the same.
    ChildProcess child([] { return ::pause(); });
    file.Close();
    EXPECT_TRUE(file.Open(path, CFile::modeReadWrite | CFile::shareExclusive));
}

TEST(ShareLock, ProtectsFromDeletionRenamingAndReplacement) {
    const TempFolder folder;
    folder.Write("a", "old");
    folder.Write("b", "new");
    const CString a = folder.Path("a");
    const CString b = folder.Path("b");
    for (const UINT flags : {CFile::modeRead | CFile::shareDenyNone, CFile::modeWrite | CFile::shareExclusive}) {
        Holder holder(a, flags);
        EXPECT_EQ(CodeOf([&] { CFile::Remove(a); }), 32);
        EXPECT_EQ(CodeOf([&] { CFile::Rename(a, folder.Path("c")); }), 32);
        EXPECT_EQ(CodeOf([&] { qel::MoveFile(b.View(), a.View(), qel::kMoveReplace); }), 32);
        EXPECT_EQ(CodeOf([&] { qel::CopyFile(b.View(), a.View(), false); }), 32);
        EXPECT_EQ(CodeOf([&] { qel::Replacement(a.View()).Commit(); }), 32);
        EXPECT_EQ(folder.Count(), 2);
    }
    EXPECT_EQ(folder.Read("a"), "old");
    EXPECT_EQ(CodeOf([&] { CFile::Remove(a); }), 0);
}

TEST(ShareLock, ARefusedOpeningEmptiesNothing) {
    const TempFolder folder;
    folder.Write("a", "kept");
    const CFile file(folder.Path("a"), CFile::modeRead | CFile::shareDenyWrite);
    CFile second;
    EXPECT_FALSE(second.Open(folder.Path("a"), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone));
    EXPECT_FALSE(second.Open(folder.Path("a"), CFile::modeCreate | CFile::modeRead | CFile::shareExclusive));
    EXPECT_EQ(folder.Read("a"), "kept");
}

// A file that can be written but not read is marked in another way, which must meet the usual one.
TEST(ShareLock, WorksOnDescriptorsThatCannotRead) {
    const TempFolder folder;
    folder.Write("a", "x");
    const auto open = [&](int flags) { return qel::Descriptor(::open(folder.Posix("a").c_str(), flags | O_CLOEXEC)); };
    const qel::Descriptor first = open(O_WRONLY), second = open(O_WRONLY), reader = open(O_RDONLY);
    EXPECT_TRUE(qel::ClaimShare(first.Get(), {.write = true, .denyRead = true}));
    EXPECT_FALSE(qel::ClaimShare(reader.Get(), {.read = true}));
    EXPECT_TRUE(qel::ClaimShare(second.Get(), {.write = true, .denyRead = true}));
    qel::WithdrawShare(first.Get());
    EXPECT_FALSE(qel::ClaimShare(reader.Get(), {.read = true}));
    qel::WithdrawShare(second.Get());
    EXPECT_TRUE(qel::ClaimShare(reader.Get(), {.read = true, .denyWrite = true}));
    EXPECT_FALSE(qel::ClaimShare(first.Get(), {.write = true}));
}

// Four processes count in one file, each step under an opening that keeps the others out; two of them in place, two by
// replacing the file. A step lost means that somebody held a file that was no longer there.
TEST(ShareLock, LosesNoStepOfACounterThatIsReplaced) {
    constexpr int kProcesses = 4;
    constexpr int kSteps = 300;
    const TempFolder folder;
    folder.Write("n", "0");
    const CString path = folder.Path("n");
    const auto inPlace = [&] {
        CFile file;
        if (!file.Open(path, CFile::modeReadWrite | CFile::shareExclusive)) return false;
        char digits[16] = {};
        file.Read(digits, sizeof digits - 1);
        const std::string next = std::to_string(std::atoi(digits) + 1);
        file.SeekToBegin();
        file.Write(next.data(), static_cast<UINT>(next.size()));
        return true;
    };
    const auto byReplacing = [&] {
        const std::string posix = folder.Posix("n");
        try {
            const qel::UnusedFile held(posix, "n");
            const std::string next = std::to_string(std::stoi(folder.Read("n")) + 1);
            const std::string made = posix + std::to_string(::getpid());
            std::ofstream(made) << next;
            return ::rename(made.c_str(), posix.c_str()) == 0;
        } catch (const CFileException&) {
            return false;
        }
    };
    std::array<std::unique_ptr<ChildProcess>, kProcesses> children;
    for (int i = 0; i < kProcesses; ++i) {
        children[i] = std::make_unique<ChildProcess>([&] {
            for (int done = 0; done < kSteps;) done += i % 2 == 0 ? inPlace() : byReplacing();
            return 0;
        });
    }
    for (auto& child : children) EXPECT_EQ(child->Wait(), 0);
    EXPECT_EQ(folder.Read("n"), std::to_string(kProcesses * kSteps));
    EXPECT_EQ(folder.Count(), 1);
}
