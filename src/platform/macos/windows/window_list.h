// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/window_list_port.h"

#include <vector>

namespace tessarel::macos {

/// The window server's list of windows. Reads no property that requires the permission for screen recording.
class MacWindowList : public WindowListPort {
public:
    /// A property that is missing or of an unexpected type is empty; an entry that is no dictionary yields a
    /// window with all properties empty.
    [[nodiscard]] std::vector<ListedWindow> onScreenWindows() override;
};

} // namespace tessarel::macos
