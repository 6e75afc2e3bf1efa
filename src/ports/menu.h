// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tessarel {

/// The effect of choosing a menu item.
enum class MenuCommand : std::uint8_t {
    None, ///< a title, a separator or the parent of a submenu
    GrantAccess,
    RunMenuAction, ///< `tag` identifies the action
    ApplyLayout,   ///< `tag` identifies the layout
    TogglePause,
    OpenSettings,
    CheckUpdates,
    Quit,
};

/// One row of a menu, as a plain value.
struct MenuItem {
    std::string title; ///< plain text: no mnemonics, no markup; empty for a separator
    MenuCommand command = MenuCommand::None;
    int tag = 0; ///< distinguishes items with the same command
    bool isEnabled = true;
    bool isChecked = false;
    bool isSeparator = false;
    std::string keyEquivalent; ///< one character, pressed with the system's menu modifier; may be empty
    std::vector<MenuItem> submenu;

    bool operator==(const MenuItem&) const = default;

    [[nodiscard]] static MenuItem separator() {
        MenuItem item;
        item.isSeparator = true;
        return item;
    }
};

using Menu = std::vector<MenuItem>;

} // namespace tessarel
