#include "qellib10/platform/random.h"

#include <sys/random.h>
#include <unistd.h>

#include <cerrno>

namespace qel {

bool FillRandom(std::span<std::byte> bytes) noexcept {
    // Up to 256 bytes come at once or not at all; only before the source is seeded can a signal interrupt the call.
    ssize_t filled = -1;
    do {
        filled = getrandom(bytes.data(), bytes.size(), 0);
    } while (filled < 0 && errno == EINTR);
    return filled >= 0 && static_cast<std::size_t>(filled) == bytes.size();
}

unsigned RandomNumber() noexcept {
    unsigned number = 0;
    if (getrandom(&number, sizeof number, GRND_NONBLOCK) < 0) number = static_cast<unsigned>(getpid());
    return number;
}

}  // namespace qel
