#pragma once

#include "ports/main_menu_port.h"

namespace tessarel::qt {

/// Gives the key of `row`, a row for editing in a menu that Qt has not made, to the widget with the keyboard
/// focus, which has that key by itself. False, and nothing happens, for other rows and when no window of Qt's
/// has the keyboard. What the widget makes of the key does not matter: the row has found its window.
[[nodiscard]] bool editInFocus(const MainMenuItem& row);

} // namespace tessarel::qt
