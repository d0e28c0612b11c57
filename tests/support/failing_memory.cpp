#include "failing_memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#include <pugixml.hpp>

namespace {

int theLeft = 0;

bool FailsNow() { return theLeft > 0 && --theLeft == 0; }

void* ForParser(std::size_t size) { return FailsNow() ? nullptr : std::malloc(size); }

void* Taken(void* place) {
    if (place == nullptr) throw std::bad_alloc();
    return place;
}

}  // namespace

void FailAllocation(int number) {
    pugi::set_memory_management_functions(ForParser, std::free);
    theLeft = number;
}
int AllocationsLeft() { return theLeft; }

void* operator new(std::size_t size) { return Taken(FailsNow() ? nullptr : std::malloc(size != 0 ? size : 1)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto step = static_cast<std::size_t>(alignment);
    return Taken(FailsNow() ? nullptr : std::aligned_alloc(step, (size + step - 1) / step * step));
}
void operator delete(void* place) noexcept { std::free(place); }
void operator delete(void* place, std::size_t) noexcept { std::free(place); }
void operator delete(void* place, std::align_val_t) noexcept { std::free(place); }
void operator delete(void* place, std::size_t, std::align_val_t) noexcept { std::free(place); }

// Those of arrays come here by themselves, but not where a sanitizer has its own.
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return operator new(size, alignment); }
void operator delete[](void* place) noexcept { std::free(place); }
void operator delete[](void* place, std::size_t) noexcept { std::free(place); }
void operator delete[](void* place, std::align_val_t) noexcept { std::free(place); }
void operator delete[](void* place, std::size_t, std::align_val_t) noexcept { std::free(place); }
