#include "qellib10/platform/large_memory.h"

#include <sys/mman.h>

#include <cstdlib>
#include <new>

namespace qel {
namespace {

constexpr std::size_t kHugePage = std::size_t{1} << 21U;

}  // namespace

void* AllocateLarge(std::size_t bytes) {
    const bool isLarge = bytes >= kHugePage;
    void* memory = nullptr;
    if (isLarge) {
        if (::posix_memalign(&memory, kHugePage, bytes) != 0) throw std::bad_alloc();
        static_cast<void>(::madvise(memory, bytes, MADV_HUGEPAGE));  // without it the memory is only slower
    } else if (memory = std::malloc(bytes); memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void FreeLarge(void* memory) noexcept { std::free(memory); }

}  // namespace qel
