#pragma once

#include <array>
#include <random>

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

/// How many versions a cabinet of a folder has. All are whole, registering goes on, and nothing is left after them.
inline std::string VersionsIn(const TempFolder& folder, const std::string& name) {
    CHistoryCabinetFile cabinet;
    if (!cabinet.Open(folder.Path(name), 0)) cabinet.Create(folder.Path(name));
    const DWORD next = cabinet.GetLatestVersion() + 1;
    folder.Write("a", Data(next));
    std::string found = std::to_string(next - 1) + (cabinet.RegistNewVersion(folder.Path("a")) ? "" : ", no next one");
    std::size_t size = 36;
    for (DWORD version = 1; version <= next; ++version) {
        if (!cabinet.GetVersionFile(version, folder.Path("c")) || folder.Read("c") != Data(version))
            found += ", one is lost";
        size += 20 + Data(version).size();
    }
    return found + (std::filesystem::file_size(folder.Posix(name)) == size ? "" : ", something after them");
}

/// A folder with a cabinet "cabinet", in memory so that flushing takes no time; "tmp" takes the backups.
class CabinetFolder : public testing::Test {
public:
    CabinetFolder() { std::filesystem::create_directory(folder.Posix("tmp")); }

    int Register(CHistoryCabinetFile& cabinet, const std::string& data) const {
        folder.Write("source", data);
        return cabinet.RegistNewVersion(folder.Path("source"));
    }
    /// The version's data, 0: the latest one's; "none" when the operation returned 0.
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
    const CString path = folder.Path("cabinet");
};
