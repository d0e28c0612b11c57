#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <random>

#include "../support/full_disk.h"
#include "../support/shared_state.h"
#include "cabinet_folder.h"

namespace {

class CabinetCrash : public CabinetFolder {
protected:
    // The cabinet holds what was acknowledged, perhaps one version more. @return versions in it now
    DWORD Check(DWORD acknowledged) const {
        const std::string found = VersionsIn(folder, "cabinet");
        const auto versions = static_cast<DWORD>(std::stoul(found));
        EXPECT_EQ(found, std::to_string(versions));
        EXPECT_LE(versions - acknowledged, 1u) << acknowledged;
        return versions + 1;
    }
};

}  // namespace

TEST_F(CabinetCrash, AKilledRegistrationLosesNothing) {
    struct Progress {
        std::atomic<DWORD> versions;
        std::atomic<bool> hasFailed;
    };
    auto& reached = SharedWithChildren<Progress>();
    std::minstd_rand random(SoakSeed());
    DWORD registered = 0;
    const int wanted = SoakCount(300);
    for (int kills = wanted; kills > 0; --kills) {
        ChildProcess child([&] {
            CHistoryCabinetFile cabinet;
            if (!cabinet.Open(path, 0) && (reached.versions != 0 || !cabinet.Create(path))) reached.hasFailed = true;
            while (!reached.hasFailed) {
                if (!Register(cabinet, Data(cabinet.GetLatestVersion() + 1))) reached.hasFailed = true;
                reached.versions = cabinet.GetLatestVersion();
            }
            return 0;
        });
        ::usleep(static_cast<useconds_t>(random() % 4000));
        child.Kill();
        ASSERT_FALSE(reached.hasFailed);
        const DWORD found = Check(reached.versions);
        ASSERT_FALSE(HasFailure());
        const bool isFull = found > 15;
        if (isFull || kills == 1) registered += found;
        if (isFull) CFile::Remove(path);
        reached.versions = isFull ? 0 : found;
    }
    EXPECT_GT(static_cast<int>(registered), wanted);
    for (const auto& entry : std::filesystem::directory_iterator(folder.Posix("tmp")))
        EXPECT_EQ(entry.file_size(), 0u) << "nothing of a cabinet is left in the folder for temporary files";
}

TEST_F(CabinetCrash, AFailedRegistrationLeavesTheCabinetAndABackup) {
    CHistoryCabinetFile cabinet;
    ASSERT_EQ(cabinet.Create(path), 1);
    ASSERT_EQ(Register(cabinet, Data(1)), 1);
    const std::string before = folder.Read("cabinet");
    folder.Write("source", Data(2));
    EXPECT_EQ(OnFullDisk(500, [&] { return cabinet.RegistNewVersion(folder.Path("source")); }), 0);
    EXPECT_EQ(folder.Read("cabinet"), before);
    EXPECT_TRUE(Backups() == 1 || SoakSeed() != 1) << "with another seed there may be no room for it";
    for (const auto& entry : std::filesystem::directory_iterator(folder.Posix("tmp")))
        EXPECT_EQ(folder.Read(entry.path()), before);
    cabinet.Close();
    Check(1);
}
