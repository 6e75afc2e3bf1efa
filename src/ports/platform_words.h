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
};

} // namespace tessarel
