#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <random>

#include "../support/child_process.h"
#include "../support/shared_state.h"
#include "../support/soak.h"
#include "cabinet_folder.h"

namespace {

// Bytes that are missing or from another place are noticed.
std::string Data(DWORD version) {
    constexpr std::array<std::size_t, 6> kSizes = {0, 10, 700, 3000, 300'000, 511};
    std::minstd_rand random(version);
    std::string data(kSizes[version % kSizes.size()], '\0');
    for (char& byte : data) byte = static_cast<char>(random());
    return data;
}

class CabinetCrash : public CabinetFolder {
protected:
    // The cabinet opens and holds what was acknowledged, perhaps one version more, and registering goes on.
    // @return versions in it now
    DWORD Check(DWORD acknowledged) const {
        CHistoryCabinetFile cabinet;
        if (cabinet.Open(path, 0) == 0) {
            EXPECT_EQ(acknowledged, 0u);
            EXPECT_EQ(cabinet.Create(path), 1);
        }
        EXPECT_TRUE(cabinet.GetLatestVersion() - acknowledged <= 1) << acknowledged;
        const DWORD next = cabinet.GetLatestVersion() + 1;
        EXPECT_EQ(Register(cabinet, Data(next)), 1);
        for (DWORD version = 1; version <= next; ++version) EXPECT_TRUE(Version(cabinet, version) == Data(version));
        EXPECT_EQ(Version(cabinet), Data(next));
        std::size_t size = 36;
        for (DWORD version = 1; version <= next; ++version) size += 20 + Data(version).size();
        EXPECT_EQ(std::filesystem::file_size(folder.Posix("c")), size) << "nothing is left behind the versions";
        return next;
    }
};

// A file that notes what the disk is told.
class RecordedFile : public CQFile {
public:
    enum Kind { kWrite, kCut, kFlush };
    struct Step {
        Kind kind;
        ULONGLONG at = 0;
        std::string bytes = {};
    };

    void Write(const void* buffer, UINT count) override {
        const bool isHalf = steps.size() == failing;
        const UINT written = isHalf ? count / 2 : count;
        steps.push_back({kWrite, GetPosition(), {static_cast<const char*>(buffer), written}});
        CQFile::Write(buffer, written);
        if (isHalf) throw CFileException(CFileException::diskFull);
    }
    void SetLength(ULONGLONG length) override {
        steps.push_back({kCut, length});
        CQFile::SetLength(length);
    }
    void Flush() override {
        steps.push_back({kFlush});
        if (steps.size() - 1 == failing) throw CFileException(CFileException::hardIO);
        CQFile::Flush();
    }
    std::size_t failing = SIZE_MAX;  // the step that the disk refuses
    std::vector<Step> steps;
};

struct RecordedCabinet : CHistoryCabinetFile {
    RecordedCabinet() { m_pFile = file; }
    const std::shared_ptr<RecordedFile> file = std::make_shared<RecordedFile>();
};

// What a disk holds when the power fails behind so many steps. Of those behind the last flush each block of a sector
// may have got there or not.
template <class Random>
std::string AfterPowerFailure(const std::vector<RecordedFile::Step>& steps, std::size_t count, Random& random) {
    constexpr std::size_t kSector = 512;
    std::string disk;
    std::size_t flushed = count;
    while (flushed > 0 && steps[flushed - 1].kind != RecordedFile::kFlush) --flushed;
    for (std::size_t i = 0; i < count; ++i) {
        const auto isKept = [&] { return i < flushed || random() % 2 == 0; };
        if (steps[i].kind == RecordedFile::kCut && isKept()) disk.resize(steps[i].at);
        const std::string& bytes = steps[i].bytes;
        for (std::size_t from = 0; from < bytes.size();) {
            const std::size_t at = steps[i].at + from;
            const std::size_t size = std::min(kSector - at % kSector, bytes.size() - from);
            if (isKept()) {
                disk.resize(std::max(disk.size(), at + size));
                disk.replace(at, size, bytes, from, size);
            }
            from += size;
        }
    }
    return disk;
}

}  // namespace

TEST_F(CabinetCrash, AKilledRegistrationLosesNothing) {
    struct Told {
        std::atomic<DWORD> versions;
        std::atomic<bool> hasFailed;
    };
    auto& told = SharedWithChildren<Told>();
    std::minstd_rand random(SoakSeed());
    DWORD registered = 0;
    const int wanted = SoakCount(300);
    for (int kills = wanted; kills > 0; --kills) {
        ChildProcess child([&] {
            CHistoryCabinetFile cabinet;
            if (!cabinet.Open(path, 0) && (told.versions != 0 || !cabinet.Create(path))) told.hasFailed = true;
            while (!told.hasFailed) {
                if (!Register(cabinet, Data(cabinet.GetLatestVersion() + 1))) told.hasFailed = true;
                told.versions = cabinet.GetLatestVersion();
            }
            return 0;
        });
        ::usleep(static_cast<useconds_t>(random() % 4000));
        child.Kill();
        ASSERT_FALSE(told.hasFailed);
        const DWORD found = Check(told.versions);
        ASSERT_FALSE(HasFailure());
        const bool isFull = found > 15;
        if (isFull || kills == 1) registered += found;
        if (isFull) CFile::Remove(path);
        told.versions = isFull ? 0 : found;
    }
    EXPECT_GT(static_cast<int>(registered), wanted);
}

TEST_F(CabinetCrash, APowerFailureLosesNothing) {
    RecordedCabinet recorded;
    auto& steps = recorded.file->steps;
    std::vector<std::size_t> acknowledged;  // steps until each version was
    ASSERT_EQ(recorded.Create(path), 1);
    for (DWORD version = 1; version <= 7; ++version) {
        if (version == 4) {  // what a killed program leaves behind
            recorded.file->SeekToEnd();
            recorded.file->Write(Data(9).data(), 2000);
        }
        ASSERT_EQ(Register(recorded, Data(version)), 1);
        acknowledged.push_back(steps.size());
    }
    recorded.Close();
    std::minstd_rand random(SoakSeed());
    for (std::size_t count = 0; count <= steps.size(); ++count) {
        const int tries = SoakCount(12);
        Tried("power cuts", tries);
        for (int i = 0; i < tries; ++i) {
            folder.Write("c", AfterPowerFailure(steps, count, random));
            Check(static_cast<DWORD>(std::ranges::upper_bound(acknowledged, count) - acknowledged.begin()));
            ASSERT_FALSE(HasFailure()) << "behind step " << count << " of " << steps.size();
        }
    }
}

TEST_F(CabinetCrash, AFailedStepLeavesTheCabinetAndABackup) {
    int failures = 0;
    for (DWORD count = 0; count < 3; ++count) {
        for (std::size_t step = 0;; ++step) {
            RecordedCabinet cabinet;
            ASSERT_EQ(cabinet.Create(path), 1);
            for (DWORD version = 1; version <= count; ++version) ASSERT_EQ(Register(cabinet, Data(version)), 1);
            const std::string before = folder.Read("c");
            cabinet.file->failing = cabinet.file->steps.size() + step;
            if (Register(cabinet, Data(count + 1))) break;
            EXPECT_EQ(Backups(), ++failures);
            Tried("failed steps");
            EXPECT_EQ(cabinet.GetLatestVersion(), count);
            EXPECT_EQ(folder.Read("c"), before) << "step " << step;
            cabinet.Close();
            Check(count);
        }
    }
    EXPECT_EQ(failures, 9 + 6 + 6);
}
