#include "qellib10/platform/storage/whole_file.h"

#include <sys/resource.h>

#include <algorithm>
#include <limits>

#include "qellib10/platform/error.h"

namespace qel {

namespace {

// More than all the addresses that the process can use.
bool IsBeyondMemory(ULONGLONG length) {
    rlimit limit = {};
    return ::getrlimit(RLIMIT_AS, &limit) == 0 && length > limit.rlim_cur;
}

}  // namespace

std::string ReadWholeFile(CFile& file) {
    constexpr std::size_t kStep = std::size_t{16} << 20;  // memory is taken as bytes arrive, not as a length claims
    file.SeekToBegin();
    const ULONGLONG length = file.GetLength();
    if (length > std::numeric_limits<int>::max()) throw DataError("a file of 2 GiB or more");
    if (IsBeyondMemory(length)) throw DataError("a file that is larger than the memory of the process");
    std::string bytes;
    bytes.reserve(length);
    while (bytes.size() < length) {
        const std::size_t at = bytes.size();
        const auto count = static_cast<UINT>(std::min<ULONGLONG>(kStep, length - at));
        bytes.resize(at + count);
        if (file.Read(&bytes[at], count) != count) throw DataError("the file became shorter");
    }
    return bytes;
}

std::string ReadWholeFile(const char* path) {
    CFile file(path, CFile::modeRead | CFile::shareDenyWrite);
    return ReadWholeFile(file);
}

}  // namespace qel
