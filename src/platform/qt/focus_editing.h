// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_menu_port.h"

namespace tessarel::qt {

/// Sends the shortcut of `row`, an editing row of a menu that Qt did not build, to the widget with the
/// keyboard focus: Qt's text fields handle these shortcuts themselves.
///
/// Returns false, and sends nothing, for any other row and when no Qt window has the focus. Otherwise returns
/// true, even if the widget ignores the shortcut or no widget has the focus.
[[nodiscard]] bool editInFocus(const MainMenuItem& row);

} // namespace tessarel::qt
