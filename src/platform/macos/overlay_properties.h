#pragma once

namespace tessarel::macos {

/// Makes the window that shows `nativeView`, an NSView, one for zones: above status items, on every space and
/// beside a full-screen program, no part of what the user cycles through, out of reach of the mouse, without
/// a shadow. That it is borderless, transparent and without the keyboard is the toolkit's to do. Does nothing
/// for a view that is null or in no window.
void becomeOverlay(void* nativeView);

/// Makes the window of `nativeView` an overlay, in case the toolkit has made it anew, and puts it in front of
/// all others of its level. The program does not come to the front with it.
void orderOverlayFront(void* nativeView);

} // namespace tessarel::macos
