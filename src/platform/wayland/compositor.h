// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/mirror.h"
#include "ports/desktop/rect.h"

#include <chrono>

namespace tessarel::wayland {

/// How a compositor is asked to move windows.
class Compositor {
public:
    virtual ~Compositor() = default;

    /// Asks the compositor to give the window this frame, in its own coordinates, and returns at once.
    virtual void place(WindowId window, const Rect& frame) = 0;

    /// Waits until the window has no placement under way, at most for `patience`. Returns false if the one
    /// that it has waited for is not carried out in time. Otherwise the frame in the mirror is the settled
    /// one.
    virtual bool waitUntilSettled(WindowId window, std::chrono::milliseconds patience) = 0;
};

} // namespace tessarel::wayland
