// SPDX-License-Identifier: MIT

#pragma once

#include "model/key_names.h"
#include "model/signal.h"

#include <string>

namespace tessarel {

/// User-visible texts that differ between systems. Each back end supplies its own; the defaults are those of
/// macOS. All other texts are written directly where they are used.
struct PlatformWords {
    ModifierNames modifierNames;
    /// First paragraph of the welcome message: what the user has to do before the program can move windows.
    std::string welcomeFirst =
        "macOS only lets an app move other apps' windows after you allow it under Privacy & Security > "
        "Accessibility. Click Continue, then switch Tessarel on in the list.";
    /// Sentence after the welcome's advice to hold Shift while dragging a window; may be empty.
    std::string welcomeDragNote = {};
    /// Whether the welcome names the shortcuts that other programs have.
    bool welcomeNamesTaken = false;
    /// Name of the status item within a sentence.
    std::string statusItem = "menu bar icon";
    /// Row of the menu while the program is not trusted.
    std::string grantAccess = "Grant Accessibility access...";
    /// Explanation of "usable screen area", within a sentence.
    std::string usableArea = "below the menu bar, beside the Dock";
    /// Beginning of a sentence that names what else may snap windows at the screen edges.
    std::string otherEdgeTiling = "macOS has its own edge tiling (System Settings > Desktop & Dock)";
    /// Sentence about the keys that show the zones, below their setting. May be empty; otherwise the back end
    /// may change it at runtime, and then sends `dragNoteChanged`.
    std::string dragNote = {};
    mutable Signal<> dragNoteChanged = {}; // mutable for those who observe words that they cannot change
    /// Full names of the modifiers that can be chosen as trigger.
    std::string controlKey = "Control";
    std::string commandKey = "Command";
    /// Heading above the state of the permission, and the state while the program is trusted.
    std::string permission = "Accessibility permission";
    std::string trusted = "Granted. Tessarel can move and resize windows.";
    /// Title of the button below the state. Without settings of the system, it is shown only while the
    /// program is not trusted.
    std::string openPermission = "Open Accessibility settings";
    /// What to do while the program is not trusted.
    std::string notTrusted = "Not granted yet. Switch Tessarel on in the Accessibility list.";
    /// Name of the user's computer within a sentence.
    std::string thisComputer = "this Mac";
};

} // namespace tessarel
