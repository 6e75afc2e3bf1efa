// SPDX-License-Identifier: MIT

#pragma once

#include "ports/wall_clock_port.h"

#include <chrono>

namespace tessarel::qt {

/// The real-time clock of the system.
class SystemWallClock : public WallClockPort {
public:
    [[nodiscard]] double secondsSince1970() override {
        return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    }
};

} // namespace tessarel::qt
