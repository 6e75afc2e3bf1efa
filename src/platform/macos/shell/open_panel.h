// SPDX-License-Identifier: MIT

#pragma once

#include "ports/open_panel_port.h"

namespace tessarel::macos {

/// The system's open panel, which starts in /Applications and accepts application bundles only.
class MacOpenPanel : public OpenPanelPort {
public:
    /// Blocks until the user closes the panel. Returns the bundle identifier of the chosen application.
    std::optional<std::string> chooseApplication(const std::string& prompt) override;
};

} // namespace tessarel::macos
