#pragma once

namespace tessarel::qt {

/// Keeps Qt from being told each time the pointer passes from the bare desktop to a window or back, which
/// would wake the program while a mouse merely moves. Needs the application object; does nothing where Qt
/// does not run on X11.
void ignorePointerCrossings();

} // namespace tessarel::qt
