// SPDX-License-Identifier: MIT

#pragma once

#include "ports/menu.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// The menu bar of the fake Mac, as the user sees and uses it.
namespace tessarel::fakemac {

/// The visible properties of a status item.
struct StatusItemSight {
    std::optional<std::string> symbol = {};
    std::string description = {}; ///< accessibility description of the symbol
    bool isTemplate = false;      ///< the symbol is drawn in the colours of the menu bar
    std::string title = {};
    bool appearsDisabled = false;
    bool operator==(const StatusItemSight&) const = default;
};

/// Returns the status items of this program.
[[nodiscard]] std::vector<StatusItemSight> statusItems();

/// Opens the menu of the status item created last and returns its rows as the user sees them. Menu tracking
/// goes on until the menu is closed.
[[nodiscard]] Menu openStatusMenu();
/// Closes the menu without a choice.
void closeStatusMenu();

/// Returns a function that clicks the row at the end of this path of titles, which closes the menu. It may be
/// called at any later time and keeps the row alive. Empty when there is no such row or it cannot be chosen.
[[nodiscard]] std::function<void()> clickAt(const std::vector<std::string>& titles);

/// Returns the rows of the main menu, as in "Edit > Redo Shift+Cmd+z".
[[nodiscard]] std::vector<std::string> mainMenuRows();

/// Presses a key with Command, and performs the row of the main menu with this key equivalent. Returns false
/// when there is none.
bool pressMenuKey(char key, bool withShift = false);

} // namespace tessarel::fakemac
