#include "qellib10/record/trail_clock.h"

#include <chrono>
#include <ctime>
#include <fstream>

#include "qellib10/platform/error.h"

namespace qel {
namespace {

std::string FirstLine(const char* path) {
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line)) throw DataError(std::string("the system does not provide ") + path);
    return line;
}

}  // namespace

TrailMoment SystemMoment() {
    using namespace std::chrono;
    static const std::string bootId = FirstLine("/proc/sys/kernel/random/boot_id");
    std::timespec running = {};
    if (::clock_gettime(CLOCK_BOOTTIME, &running) != 0) throw DataError("the system has no clock since its start");
    const auto bootTime = duration_cast<milliseconds>(seconds(running.tv_sec) + nanoseconds(running.tv_nsec));
    const auto now = floor<milliseconds>(system_clock::now().time_since_epoch());
    return {now.count(), static_cast<std::uint64_t>(bootTime.count()), bootId};
}

std::string SystemHost() {
    static const std::string host = FirstLine("/proc/sys/kernel/hostname");
    return host;
}

}  // namespace qel
