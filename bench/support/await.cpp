// SPDX-License-Identifier: MIT

#include "support/await.h"

#include <stdexcept>
#include <string>
#include <thread>

namespace tessarel::bench {

using namespace std::chrono_literals;

bool becomesTrue(const std::function<bool()>& holds, Clock::duration patience) {
    const auto end = Clock::now() + patience;
    while (!holds()) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

void await(const char* what, const std::function<bool()>& holds) {
    if (!becomesTrue(holds, 10s))
        throw std::runtime_error(std::string("in vain: ") + what);
}

} // namespace tessarel::bench
