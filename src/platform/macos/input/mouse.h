// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/mouse_port.h"

#include <functional>

namespace tessarel::macos {

/// The left mouse button, and the modifier keys while it is held, observed with AppKit's event monitors.
class MacMouse : public MousePort {
public:
    /// Global monitors receive only the events of other applications, so a press over one of our own windows
    /// is not reported.
    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;
};

} // namespace tessarel::macos
