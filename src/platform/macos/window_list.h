#pragma once

#include "ports/window_list_port.h"

#include <vector>

namespace tessarel::macos {

/// The window server's list. Asks for nothing that would need the permission to record the screen.
class MacWindowList : public WindowListPort {
public:
    [[nodiscard]] std::vector<ListedWindow> onScreenWindows() override;
};

} // namespace tessarel::macos
