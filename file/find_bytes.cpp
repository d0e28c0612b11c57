#include "qellib10/file/find_bytes.h"

#include <cstring>

namespace qel {
namespace {

std::size_t PlaceOf(const void* found, std::span<const std::byte> bytes) noexcept {
    return found != nullptr ? static_cast<std::size_t>(static_cast<const std::byte*>(found) - bytes.data()) : kNotFound;
}

}  // namespace

std::size_t FindBytes(std::span<const std::byte> bytes, std::span<const std::byte> wanted) noexcept {
    // If the first byte is rare, searching for it is fastest; if it gives many false hits, memmem takes over, which
    // never reads a byte more than a few times.
    constexpr std::size_t kBytesForOneMiss = 64;
    std::size_t patience = 16;
    std::size_t at = 0;
    while (bytes.size() - at >= wanted.size()) {
        const auto starts = bytes.subspan(at, bytes.size() - at - wanted.size() + 1);
        const std::size_t next =
            PlaceOf(std::memchr(starts.data(), static_cast<int>(wanted[0]), starts.size()), starts);
        if (next == kNotFound) return kNotFound;
        at += next;
        if (std::memcmp(bytes.data() + at, wanted.data(), wanted.size()) == 0) return at;
        ++at;
        patience += next / kBytesForOneMiss;
        if (patience-- > 0) continue;
        const auto rest = bytes.subspan(at);
        const std::size_t last = PlaceOf(::memmem(rest.data(), rest.size(), wanted.data(), wanted.size()), rest);
        return last == kNotFound ? kNotFound : at + last;
    }
    return kNotFound;
}

}  // namespace qel
