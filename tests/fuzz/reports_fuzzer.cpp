// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "model/json.h"
#include "platform/plasma/reports.h"
#include "platform/wayland/mirror.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

using namespace tessarel;
using wayland::Mirror;
using wayland::WindowId;

namespace {

void checkMirror(const Mirror& mirror) {
    const auto windows = mirror.frontToBack();
    fuzz::require(std::set(windows.begin(), windows.end()).size() == windows.size(),
                  "each window is listed once");
    for (const WindowId window : windows) {
        const wayland::WindowState* const state = mirror.find(window);
        fuzz::require(state != nullptr && mirror.named(state->name) == window,
                      "a window in the list is found by its id and by its name");
    }
    fuzz::require(mirror.active() == wayland::kNoWindow || mirror.find(mirror.active()) != nullptr,
                  "the active window exists");
    (void)mirror.primary();
}

} // namespace

/// Reads reports of the compositor, one a line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    Mirror mirror;
    const auto opened = mirror.onOpened([&](WindowId window) {
        fuzz::require(mirror.find(window) != nullptr || !mirror.isReady(), "an opened window exists");
    });
    const auto closed = mirror.onClosed([](WindowId window, const wayland::WindowState& /*last*/) {
        fuzz::require(window != wayland::kNoWindow, "a closed window has an id");
    });
    while (!input.isAtEnd()) {
        const auto report = readJson(input.until('\n'));
        if (!report)
            continue;
        (void)plasma::applyReport(*report, mirror);
        checkMirror(mirror);
        mirror.deliver();
    }
    return 0;
}
