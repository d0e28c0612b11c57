// Law: what is found about a file's version depends neither on the case of the key nor on bytes after those that were
// read: the same file with more at its end gives the same.
#include "../tests/support/version_law.h"
#include "law.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLongestUsefulInput = 16 * 1024;
    if (size <= kLongestUsefulInput) Require(SaysTheSameWithMoreAfter(Text(data, size)));
    return 0;
}
