#pragma once

#include "ports/menu.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// The menu bar of the fake Mac as a user sees and uses it.
namespace tessarel::fakemac {

struct StatusItemSight {
    std::optional<std::string> symbol = {};
    std::string description = {}; ///< of the symbol
    bool isTemplate = false;      ///< drawn in the colours of the menu bar
    std::string title = {};
    bool appearsDisabled = false;
    bool operator==(const StatusItemSight&) const = default;
};

/// Those of this program.
[[nodiscard]] std::vector<StatusItemSight> statusItems();

/// Opens the menu of the status item put up last: its rows as they look. It is tracked from then on.
[[nodiscard]] Menu openStatusMenu();
/// Ends that without a choice.
void closeStatusMenu();

/// A click on the row of that menu to which these titles lead, which closes it; it may come at any time, and
/// keeps the row until then. Empty when there is no such row, or when nothing comes of a click on it.
[[nodiscard]] std::function<void()> clickAt(const std::vector<std::string>& titles);

/// The rows of the main menu, as in "Edit > Redo Shift+Cmd+z".
[[nodiscard]] std::vector<std::string> mainMenuRows();

/// Chooses the row of the main menu that has the key, pressed with Command; false when there is none.
bool pressMenuKey(char key, bool withShift = false);

} // namespace tessarel::fakemac
