// SPDX-License-Identifier: MIT

#include "support/x11/flood.h"

#include <chrono>

namespace tessarel::x11test {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

} // namespace

void Flood::start(int perSecond) {
    m_thread = std::thread([this, perSecond] { run(perSecond); });
}

void Flood::stop() {
    m_isOver = true;
    m_thread.join();
}

void Flood::run(int perSecond) {
    auto last = Clock::now();
    double due = 0;
    while (!m_isOver) {
        std::this_thread::sleep_for(1ms);
        const auto now = Clock::now();
        due += perSecond * std::chrono::duration<double>(now - last).count();
        last = now;
        for (; due >= 1 && !m_isOver; --due) {
            send();
            ++m_sent;
        }
        flush();
    }
}

} // namespace tessarel::x11test
