#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <random>

#include "../support/child_process.h"
#include "../support/full_disk.h"
#include "../support/shared_state.h"
#include "../support/soak.h"
#include "cabinet_folder.h"

namespace {

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
    for (const auto& entry : std::filesystem::directory_iterator(folder.Posix("tmp"))) {
        EXPECT_EQ(entry.file_size(), 0u) << "nothing of a cabinet is left in the folder for temporary files";
    }
}

TEST_F(CabinetCrash, AFailedRegistrationLeavesTheCabinetAndABackup) {
    CHistoryCabinetFile cabinet;
    ASSERT_EQ(cabinet.Create(path), 1);
    ASSERT_EQ(Register(cabinet, Data(1)), 1);
    const std::string before = folder.Read("c");
    folder.Write("source", Data(2));
    EXPECT_EQ(OnFullDisk(500, [&] { return cabinet.RegistNewVersion(folder.Path("source")); }), 0);
    EXPECT_EQ(folder.Read("c"), before);
    EXPECT_TRUE(Backups() == 1 || SoakSeed() != 1) << "with another seed there may be no room for it";
    for (const auto& entry : std::filesystem::directory_iterator(folder.Posix("tmp"))) {
        EXPECT_EQ(folder.Read(entry.path()), before);
    }
    cabinet.Close();
    Check(1);
}
