// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::macos {

/// Gives the window of `nativeView`, an NSView, the properties of an overlay: the level of status items, on
/// every space and beside full-screen windows, not in the window cycle, transparent to the mouse, without a
/// shadow. Does nothing for a null view or one that is in no window.
///
/// The toolkit has to make the window borderless, transparent and unable to become the key window.
void becomeOverlay(void* nativeView);

/// Calls `becomeOverlay`, because the toolkit may have recreated the window, and orders the window to the
/// front of its level. Does not activate the application.
void orderOverlayFront(void* nativeView);

} // namespace tessarel::macos
