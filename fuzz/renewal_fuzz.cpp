// Law: a renewal record read from any bytes, stored and read again is the same record; one that is not read does not
// change the record.
#include "qellib10/secure/history_renew_info.h"

#include "../tests/support/archive_bytes.h"
#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 16 * 1024;

// A record that no input is likely to contain.
CHistoryRenewInfo Untouched() {
    CHistoryRenewInfo info;
    info.SetComment("untouched");
    return info;
}

CHistoryRenewInfo Read(const std::string& bytes) {
    CHistoryRenewInfo info = Untouched();
    Require(Load(info, bytes) >= 0 || info == Untouched());
    return info;
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) { return Read(Text(data, size)) != Untouched(); }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    CHistoryRenewInfo first = Read(Text(data, size));
    Require(Read(Stored(first)) == first);
    return 0;
}
