// SPDX-License-Identifier: MIT

// Measures the program on KDE Plasma under Wayland, in private sessions without a screen.
//
//   plasma DIRECTORY [PRESSES] [keys|arranging|highlights|rest]

#include "plasma/parts.h"

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace tessarel::bench {

namespace {

constexpr int kDefaultPresses = 200;
constexpr std::chrono::seconds kRest{20};

void measure(const std::string& programs, int presses, const std::string& part) {
    const auto isWanted = [&](const char* name) { return part.empty() || part == name; };
    if (isWanted("keys"))
        measureKeys(programs, presses);
    if (isWanted("arranging"))
        measureArranging(programs, (presses + 3) / 4);
    if (isWanted("highlights"))
        measureHighlights(presses);
    if (isWanted("rest"))
        measureAtRest(programs, (presses + 9) / 10, kRest);
}

} // namespace

void start(plasmatest::PlasmaSession& session, const std::string& settings) {
    session.writeSettings(settings);
    if (!session.startProgram())
        throw std::runtime_error("the program does not start: " + session.program().errors());
}

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: plasma DIRECTORY [PRESSES] [keys|arranging|highlights|rest]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1],
                                 count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultPresses,
                                 count > 3 ? arguments[3] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "plasma: %s\n", error.what());
        return 1;
    }
}
