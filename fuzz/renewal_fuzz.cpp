// Law: a renewal record read from any bytes, stored and read again is the same record; one that is not read leaves the
// record as it was.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/storage/mem_file.h"
#include "qellib10/secure/history_renew_info.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 16 * 1024;

// A record that no input is likely to hold.
CHistoryRenewInfo Untouched() {
    CHistoryRenewInfo info;
    info.SetComment("untouched");
    return info;
}

CHistoryRenewInfo Read(const std::uint8_t* data, std::size_t size) {
    CHistoryRenewInfo info = Untouched();
    CMemFile file;
    file.Attach(data, static_cast<UINT>(size));
    try {
        CArchive archive(&file, CArchive::load);
        info.Serialize(archive);
    } catch (const CArchiveException&) {
        if (info != Untouched()) std::abort();
    }
    return info;
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) { return Read(data, size) != Untouched(); }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    CHistoryRenewInfo first = Read(data, size);
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    first.Serialize(archive);
    archive.Close();
    const std::vector<BYTE> bytes = file.Detach();
    if (Read(bytes.data(), bytes.size()) != first) std::abort();
    return 0;
}
