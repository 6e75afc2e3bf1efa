#pragma once

#include "model/key_names.h"

#include <string>

namespace tessarel {

/// The few texts that would not be true on every system: each back end supplies its own. As they stand here
/// they are the simulation's. Everything else that the user reads stands in the code once.
struct PlatformWords {
    ModifierNames modifierNames;
    /// What the welcome says the user has to do first, up to the empty line.
    std::string welcomeFirst =
        "macOS only lets an app move other apps' windows after you allow it under Privacy & Security > "
        "Accessibility. Click Continue, then switch Tessarel on in the list.";
    /// How the welcome calls the status item.
    std::string statusItem = "menu bar icon";
    /// Where the usable area of a screen lies.
    std::string usableArea = "below the menu bar, beside the Dock";
    /// Who else may snap a window at the screen's edge.
    std::string otherEdgeTiling = "macOS has its own edge tiling (System Settings > Desktop & Dock)";
    /// The modifiers that a drag may wait for, where they stand alone.
    std::string controlKey = "Control";
    std::string commandKey = "Command";
    /// What to do while the program is not trusted.
    std::string notTrusted = "Not granted yet. Switch Tessarel on in the Accessibility list.";
    std::string thisComputer = "this Mac";
};

} // namespace tessarel
