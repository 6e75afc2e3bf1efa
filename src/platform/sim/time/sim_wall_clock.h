// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/time/sim_clock.h"
#include "ports/wall_clock_port.h"

#include <chrono>

namespace tessarel::sim {

/// A real-time clock that advances with the simulated clock.
class SimWallClock : public WallClockPort {
public:
    explicit SimWallClock(SimClock& clock) : m_clock(clock) {}

    [[nodiscard]] double secondsSince1970() override {
        return start + std::chrono::duration<double>(m_clock.now().time_since_epoch()).count();
    }

    /// Unix time at which the simulated clock started, in seconds. A test may change it at any time, as a
    /// user may set the clock.
    double start = 1'800'000'000;

private:
    SimClock& m_clock;
};

} // namespace tessarel::sim
