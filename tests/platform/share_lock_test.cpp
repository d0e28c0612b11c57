#include "qellib10/platform/storage/share_lock.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <memory>

#include "../support/file_error_code.h"
#include "../support/run_at_once.h"
#include "../support/shared_state.h"
#include "../support/test.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/replacement.h"

namespace {

// Reading, writing and both, each with the share modes from "exclusive" to "deny none".
constexpr unsigned kModes = 12;
constexpr UINT ModeOf(unsigned number) { return number / 4 | (number % 4 + 1) << 4; }

// As bits: 1 reading, 2 writing.
constexpr unsigned Does(unsigned number) { return number / 4 + 1; }
constexpr unsigned Denies(unsigned number) { return 3 - number % 4; }

// Which modes the platform allows beside @p held: none may do what the other denies.
std::string Allowed(unsigned held) {
    std::string allowed;
    for (unsigned number = 0; number < kModes; ++number)
        allowed += (Does(number) & Denies(held)) != 0 || (Does(held) & Denies(number)) != 0 ? '.' : '+';
    return allowed;
}

class ShareLock : public testing::Test {
protected:
    ShareLock() { m_folder.Write("a", "kept"); }

    // A process that holds the file open until it is killed.
    std::unique_ptr<ChildProcess> Holder(UINT flags) const {
        auto holder = std::make_unique<ChildProcess>([&] {
            CFile file(m_path, flags);
            m_folder.Write("ready", "");
            return ::pause();
        });
        while (!m_folder.Has("ready")) ::usleep(100);
        std::filesystem::remove(m_folder.Posix("ready"));
        return holder;
    }

    TempFolder m_folder;
    const CString m_path = m_folder.Path("a");
};

std::string AllowedBeside(const CString& path) {
    std::string allowed;
    for (unsigned number = 0; number < kModes; ++number) {
        CFile file;
        CFileException error;
        allowed += file.Open(path, ModeOf(number), &error) ? '+' : '.';
        EXPECT_TRUE(error.m_cause == CFileException::none || error.m_lOsError == 32);
    }
    return allowed;
}

}  // namespace

TEST_F(ShareLock, HoldsWithinAProcessAndAcross) {
    for (unsigned number = 0; number < kModes; ++number) {
        SCOPED_TRACE(number);
        {
            const CFile file(m_path, ModeOf(number));
            EXPECT_EQ(AllowedBeside(m_path), Allowed(number));
        }
        const auto holder = Holder(ModeOf(number));
        EXPECT_EQ(AllowedBeside(m_path), Allowed(number));
    }
    EXPECT_EQ(AllowedBeside(m_path), std::string(kModes, '+'));
    EXPECT_EQ(m_folder.Count(), 1);  // no lock file
    const CFile noShareBits(m_path, CFile::modeRead);
    EXPECT_EQ(AllowedBeside(m_path), std::string(kModes, '.'));
}

TEST_F(ShareLock, EndsWithTheLastDuplicateAndWithTheProcess) {
    CFile file(m_path, CFile::modeReadWrite);
    std::unique_ptr<CFile> copy = file.Duplicate();
    file.Close();
    EXPECT_FALSE(file.Open(m_path, CFile::modeRead));
    copy.reset();
    EXPECT_TRUE(file.Open(m_path, CFile::modeRead));
    file.Close();

    const auto holder = Holder(CFile::modeReadWrite);
    EXPECT_FALSE(file.Open(m_path, CFile::modeRead));
    holder->Kill();
    EXPECT_TRUE(file.Open(m_path, CFile::modeRead));

    // A child before its exec has copies of all descriptors; a file that is closed is free all the same.
    ChildProcess child([] { return ::pause(); });
    file.Close();
    EXPECT_TRUE(file.Open(m_path, CFile::modeReadWrite));
}

TEST_F(ShareLock, ProtectsFromDeletionRenamingReplacementAndEmptying) {
    m_folder.Write("b", "new");
    const std::string a = m_folder.Name("a");
    const std::string b = m_folder.Name("b");
    for (const UINT flags : {CFile::modeRead | CFile::shareDenyWrite, CFile::modeWrite | CFile::shareExclusive}) {
        const auto holder = Holder(flags);
        EXPECT_EQ(CodeOf([&] { CFile::Remove(m_path); }), 32);
        EXPECT_EQ(CodeOf([&] { CFile::Rename(m_path, m_folder.Path("c")); }), 32);
        EXPECT_EQ(CodeOf([&] { qel::CopyFile(b, a, false); }), 32);
        EXPECT_EQ(CodeOf([&] { qel::Replacement(a).Commit(); }), 32);
        EXPECT_EQ(CodeOf([&] { CFile(m_path, CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone); }), 32);
        EXPECT_EQ(m_folder.Count(), 2);
    }
    EXPECT_EQ(m_folder.Read("a"), "kept");
    EXPECT_EQ(CodeOf([&] { CFile::Remove(m_path); }), 0);
}

// Of those that create a file for themselves at the same moment exactly one has it.
TEST_F(ShareLock, HasOneOwnerOfAllThatComeAtOnce) {
    constexpr int kAtOnce = 6;
    constexpr UINT kOwn = CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite | CFile::shareExclusive;
    auto& tried = SharedWithChildren<std::atomic<int>>();
    for (int round = 0; round < 50; ++round) {
        tried = 0;
        const std::string name = std::to_string(round);
        EXPECT_EQ(RunAtOnce(kAtOnce,
                            [&](int) {
                                CFile file;
                                const bool isOwner = file.Open(m_folder.Path(name), kOwn);
                                for (++tried; tried < kAtOnce;) ::usleep(50);
                                return isOwner ? 0 : 1;
                            }),
                  kAtOnce - 1);
    }
}

// A file that can be written but not read is marked in another way, which must meet the usual one.
TEST_F(ShareLock, WorksOnDescriptorsThatCannotRead) {
    const auto open = [&](int flags) {
        return qel::Descriptor(::open(m_folder.Posix("a").c_str(), flags | O_CLOEXEC));
    };
    const qel::Descriptor first = open(O_WRONLY), second = open(O_WRONLY), reader = open(O_RDONLY);
    EXPECT_TRUE(qel::ClaimShare(first.Get(), O_WRONLY, {.write = true, .denyRead = true}));
    EXPECT_FALSE(qel::ClaimShare(reader.Get(), O_RDONLY, {.read = true}));
    EXPECT_TRUE(qel::ClaimShare(second.Get(), O_WRONLY, {.write = true, .denyRead = true}));
    qel::WithdrawShare(first.Get());
    EXPECT_FALSE(qel::ClaimShare(reader.Get(), O_RDONLY, {.read = true}));
    qel::WithdrawShare(second.Get());
    EXPECT_TRUE(qel::ClaimShare(reader.Get(), O_RDONLY, {.read = true, .denyWrite = true}));
    EXPECT_FALSE(qel::ClaimShare(first.Get(), O_WRONLY, {.write = true}));
}

// Threads and processes count in one file, each step under an opening that keeps the others out; the first in place,
// the others by replacing the file. A step lost means that somebody held a file that was no longer there.
TEST_F(ShareLock, LosesNoStepOfACounterThatIsReplaced) {
    constexpr int kAtOnce = 4, kSteps = 300;
    m_folder.Write("a", "0");
    const auto next = [&] { return std::to_string(std::stoi(m_folder.Read("a")) + 1); };
    const auto inPlace = [&] {
        CFile file(m_path, CFile::modeReadWrite);
        const std::string digits = next();
        file.Write(digits.data(), static_cast<UINT>(digits.size()));
    };
    const auto byReplacing = [&] {
        const qel::ExclusiveHold held(m_folder.Posix("a"), "a");
        const std::string made = std::to_string(::getpid());
        m_folder.Write(made, next());
        std::filesystem::rename(m_folder.Posix(made), m_folder.Posix("a"));
    };
    const auto count = [&](int i) {
        for (int done = 0; done < kSteps;) done += (i % 2 == 0 ? CodeOf(inPlace) : CodeOf(byReplacing)) == 0;
        return 0;
    };
    EXPECT_EQ(RunAtOnce(kAtOnce, count), 0);
    EXPECT_EQ(m_folder.Read("a"), std::to_string(kAtOnce * kSteps));
    EXPECT_EQ(m_folder.Count(), 1);
}
