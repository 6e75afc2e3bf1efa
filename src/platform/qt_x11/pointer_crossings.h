// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::qt {

/// Deselects EnterNotify and LeaveNotify on the root windows for Qt's connection. Each of these events would
/// wake the program whenever the pointer moves between the root window and another window.
///
/// Requires the application object. Does nothing when Qt does not run on X11.
void ignorePointerCrossings();

} // namespace tessarel::qt
