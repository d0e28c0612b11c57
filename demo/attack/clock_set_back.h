#pragma once

#include <chrono>

namespace titration {

/// While it lives, the clock of this program is earlier than the system's: setting that one needs the administrator's
/// rights, and all other programs would see it. The time since the start of the system stays right, as it does for
/// somebody who sets the clock.
class ClockSetBack {
public:
    explicit ClockSetBack(std::chrono::seconds by);
    ~ClockSetBack();
    ClockSetBack(const ClockSetBack&) = delete;
    ClockSetBack& operator=(const ClockSetBack&) = delete;
};

}  // namespace titration
