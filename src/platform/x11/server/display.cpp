// SPDX-License-Identifier: MIT

#include "platform/x11/server/display.h"

#include <cstdlib>

namespace tessarel::x11 {

namespace {

/// Returns the screen with index `number`, or null when the server has no such screen.
const xcb_screen_t* screenOf(xcb_connection_t* xcb, int number) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(xcb));
    for (; screens.rem > 0 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

/// Returns the display name for the error text: `displayName`, else $DISPLAY, else an empty string.
std::string nameOf(const char* displayName) {
    if (displayName)
        return displayName;
    const char* const inherited = std::getenv("DISPLAY");
    return inherited ? inherited : "";
}

} // namespace

OpenedDisplay openDisplay(const char* displayName) {
    OpenedDisplay display;
    display.xcb.reset(xcb_connect(displayName, &display.screenNumber));
    if (xcb_connection_has_error(display.xcb.get()) == 0)
        display.screen = screenOf(display.xcb.get(), display.screenNumber);
    if (display.screen)
        return display;
    const std::string name = nameOf(displayName);
    return {.failure = name.empty() ? "No X display: $DISPLAY is not set."
                                    : "The X display \"" + name + "\" does not answer."};
}

} // namespace tessarel::x11
