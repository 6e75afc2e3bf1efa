#pragma once

#include "ports/open_panel_port.h"

namespace tessarel::macos {

/// The system's panel, on the applications.
class MacOpenPanel : public OpenPanelPort {
public:
    std::optional<std::string> chooseApplication(const std::string& prompt) override;
};

} // namespace tessarel::macos
