// Law: a file of any bytes, with the sums of its header made right, is refused as a cabinet; or what comes out of it,
// and what does not, is the same twice and leaves it as it is, and then registering a version either changes nothing or
// makes it the latest one, which comes out equal.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <span>
#include <string>

#include "qellib10/platform/endian.h"
#include "qellib10/secure/history_cabinet_file.h"
#include "qellib10/secure/history_cabinet_format.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;
constexpr DWORD kVersionsTried = 8;
const std::string kNewVersion = "new version";

void Check(bool holds) {
    if (!holds) std::abort();
}

struct TemporaryFile {
    ~TemporaryFile() { CFile::Remove(name); }
    void Write(const std::string& bytes) const {
        CFile file(name, CFile::modeWrite | CFile::modeCreate);
        file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    }
    std::string Read() const {
        CFile file(name, CFile::modeRead | CFile::shareDenyNone);
        std::string bytes(file.GetLength(), '\0');
        Check(file.Read(bytes.data(), static_cast<UINT>(bytes.size())) == bytes.size());
        return bytes;
    }
    const CString name = CQFile::GetTempFilePath("fuz");
};

// The cabinet, what is registered, and what is taken out.
struct Files {
    TemporaryFile cabinet, source, target;
};
const Files& TheFiles() {
    static const Files files;
    return files;
}

std::string WithRightSums(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size < qel::kCabinetHeaderSize) return bytes;
    qel::CheckSums sums;
    sums.Add({data, qel::kCheckedHeaderSize});
    const auto room = std::as_writable_bytes(std::span(bytes));
    qel::PutNumber(room, qel::kCheckedHeaderSize, sums.Sum());
    qel::PutNumber(room, qel::kCheckedHeaderSize + sizeof(DWORD), sums.Crc());
    return bytes;
}

// By number, the latest under 0; only those that come out.
std::map<DWORD, std::string> Versions(CHistoryCabinetFile& cabinet) {
    const TemporaryFile& target = TheFiles().target;
    std::map<DWORD, std::string> found;
    if (cabinet.GetLatestVersionFile(target.name)) found[0] = target.Read();
    for (DWORD version = std::min(cabinet.GetLatestVersion(), kVersionsTried); version > 0; --version) {
        if (cabinet.GetVersionFile(version, target.name)) found[version] = target.Read();
    }
    return found;
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    CHistoryCabinetFile cabinet;
    TheFiles().cabinet.Write(WithRightSums(data, size));
    return cabinet.Open(TheFiles().cabinet.name, 1) && Versions(cabinet).size() == cabinet.GetLatestVersion() + 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    const auto& [file, source, target] = TheFiles();
    const std::string bytes = WithRightSums(data, size);
    file.Write(bytes);
    CHistoryCabinetFile cabinet;
    if (!cabinet.Open(file.name, 0)) return 0;
    const auto versions = Versions(cabinet);
    Check(Versions(cabinet) == versions && file.Read() == bytes);

    source.Write(kNewVersion);
    const DWORD count = cabinet.GetLatestVersion();
    const bool isRegistered = cabinet.RegistNewVersion(source.name) != 0;
    Check(cabinet.GetLatestVersion() == count + (isRegistered ? 1 : 0));
    if (!isRegistered) {
        Check(file.Read() == bytes);
        return 0;
    }
    CHistoryCabinetFile again;
    cabinet.Close();
    Check(again.Open(file.name, 1) && again.GetLatestVersion() == count + 1);
    Check(again.GetGUID() == cabinet.GetGUID() && Versions(again).at(0) == kNewVersion);
    return 0;
}
