#pragma once

#include "ports/mouse_port.h"

#include <functional>

namespace tessarel::macos {

/// The mouse as AppKit's global monitors tell of it.
class MacMouse : public MousePort {
public:
    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;
};

} // namespace tessarel::macos
