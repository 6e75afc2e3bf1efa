#pragma once

#include "platform/sim/sim_clock.h"
#include "ports/wall_clock_port.h"

#include <chrono>

namespace tessarel::sim {

/// Date and time that go with the simulated clock.
class SimWallClock : public WallClockPort {
public:
    explicit SimWallClock(SimClock& clock) : m_clock(clock) {}

    [[nodiscard]] double secondsSince1970() override {
        return start + std::chrono::duration<double>(m_clock.now().time_since_epoch()).count();
    }

    double start = 1'800'000'000; ///< when the simulated clock began; may be set at any time

private:
    SimClock& m_clock;
};

} // namespace tessarel::sim
