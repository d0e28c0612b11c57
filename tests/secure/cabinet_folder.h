#pragma once

#include <array>
#include <random>

#include "../support/environment_scope.h"
#include "../support/temp_folder.h"
#include "../support/test.h"
#include "qellib10/secure/history_cabinet_file.h"

// What a version of a cabinet holds: bytes that are missing or from another place are noticed.
inline std::string Data(DWORD version) {
    constexpr std::array<std::size_t, 6> kSizes = {0, 10, 700, 3000, 300'000, 511};
    std::minstd_rand random(version);
    std::string data(kSizes[version % kSizes.size()], '\0');
    for (char& byte : data) byte = static_cast<char>(random());
    return data;
}

/// A folder with a cabinet "c", in memory so that flushing takes no time; "tmp" takes the backups.
class CabinetFolder : public testing::Test {
public:
    CabinetFolder() { std::filesystem::create_directory(folder.Posix("tmp")); }

    int Register(CHistoryCabinetFile& cabinet, const std::string& data) const {
        folder.Write("source", data);
        return cabinet.RegistNewVersion(folder.Path("source"));
    }
    /// The version's data, 0: the latest one's; "none" when the answer is 0.
    std::string Version(CHistoryCabinetFile& cabinet, DWORD version = 0) const {
        const CString target = folder.Path("target");
        const int result =
            version != 0 ? cabinet.GetVersionFile(version, target) : cabinet.GetLatestVersionFile(target);
        return result != 0 ? folder.Read("target") : "none";
    }
    int Backups() const {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(folder.Posix("tmp")), {}));
    }

    const TempFolder folder{"/dev/shm"};
    const EnvironmentScope place{"TMPDIR", folder.Posix("tmp").c_str()};
    const CString path = folder.Path("c");
};
