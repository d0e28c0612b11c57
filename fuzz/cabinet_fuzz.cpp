// Law: a file of any bytes, with correct sums in its header, is refused as a cabinet; or what it returns and what it
// refuses is the same twice, and the file does not change; then registering a version either changes nothing or makes
// it the latest one, which is returned unchanged.
#include <algorithm>
#include <cstddef>
#include <map>
#include <span>
#include <string>

#include "qellib10/platform/endian.h"
#include "qellib10/secure/history_cabinet_file.h"
#include "qellib10/secure/history_cabinet_format.h"

#include "../tests/support/temp_folder.h"
#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;
constexpr DWORD kVersionsTried = 8;
const std::string kNewVersion = "new version";

// The cabinet, the registered file, and the file taken out.
const TempFolder& Files() {
    static const TempFolder folder;
    return folder;
}

std::string WithCorrectSums(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size < qel::kCabinetHeaderSize) return bytes;
    qel::CheckSums sums;
    sums.Add({data, qel::kCheckedHeaderSize});
    const auto writable = std::as_writable_bytes(std::span(bytes));
    qel::PutNumber(writable, qel::kCheckedHeaderSize, sums.Sum());
    qel::PutNumber(writable, qel::kCheckedHeaderSize + sizeof(DWORD), sums.Crc());
    return bytes;
}

// By number, the latest under 0; only those that can be taken out.
std::map<DWORD, std::string> Versions(CHistoryCabinetFile& cabinet) {
    std::map<DWORD, std::string> found;
    if (cabinet.GetLatestVersionFile(Files().Path("target"))) found[0] = Files().Read("target");
    for (DWORD version = std::min(cabinet.GetLatestVersion(), kVersionsTried); version > 0; --version) {
        if (cabinet.GetVersionFile(version, Files().Path("target"))) found[version] = Files().Read("target");
    }
    return found;
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    CHistoryCabinetFile cabinet;
    Files().Write("cabinet", WithCorrectSums(data, size));
    return cabinet.Open(Files().Path("cabinet"), 1) && Versions(cabinet).size() == cabinet.GetLatestVersion() + 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    const std::string bytes = WithCorrectSums(data, size);
    Files().Write("cabinet", bytes);
    CHistoryCabinetFile cabinet;
    if (!cabinet.Open(Files().Path("cabinet"), 0)) return 0;
    const auto versions = Versions(cabinet);
    Require(Versions(cabinet) == versions && Files().Read("cabinet") == bytes);

    Files().Write("source", kNewVersion);
    const DWORD count = cabinet.GetLatestVersion();
    const bool isRegistered = cabinet.RegistNewVersion(Files().Path("source")) != 0;
    Require(cabinet.GetLatestVersion() == count + (isRegistered ? 1 : 0));
    if (!isRegistered) {
        Require(Files().Read("cabinet") == bytes);
        return 0;
    }
    CHistoryCabinetFile again;
    cabinet.Close();
    Require(again.Open(Files().Path("cabinet"), 1) && again.GetLatestVersion() == count + 1);
    Require(again.GetGUID() == cabinet.GetGUID() && Versions(again).at(0) == kNewVersion);
    return 0;
}
