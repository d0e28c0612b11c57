// Law: what a file is found to say about its version depends neither on the case of the key nor on bytes behind what
// was read: the same file with more at its end says the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "qellib10/platform/error.h"
#include "qellib10/platform/shell/version_info.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 16 * 1024;

std::optional<CString> TextIn(const std::vector<BYTE>& bytes, const char* key) {
    CMemFile file;
    file.Attach(bytes.data(), static_cast<UINT>(bytes.size()));
    try {
        return qel::VersionText(file, key);
    } catch (const qel::DataError&) {
        return std::nullopt;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    std::vector<BYTE> bytes(data, data + size);
    const std::optional<CString> text = TextIn(bytes, "FileVersion");
    if (TextIn(bytes, "FILEversion") != text) std::abort();
    bytes.resize(size + 1000, 0x41);
    if (text && TextIn(bytes, "FileVersion") != text) std::abort();
    return 0;
}
