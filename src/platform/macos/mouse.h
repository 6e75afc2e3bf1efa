#pragma once

#include "ports/mouse_port.h"

#include <functional>

namespace tessarel::macos {

/// The mouse, and the modifier keys during a drag, by AppKit's event monitors.
class MacMouse : public MousePort {
public:
    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;
};

} // namespace tessarel::macos
