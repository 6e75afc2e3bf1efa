// SPDX-License-Identifier: MIT

// Plays the keyboard, the mouse and the touch screen of a compositor, whose socket is the only argument.
// Reads commands, one per line, and replies "done" to each as soon as the compositor has received the input:
//   key CODE PRESSED
//   move X Y
//   button PRESSED
//   touch X Y
//   move-touch X Y
//   end-touch
// CODE is one of the kernel's, PRESSED is 1 or 0, X and Y are a place in the compositor's coordinates, and
// the button is the left one. Prints "ready" first, once the compositor accepts input.

#include "fake-input-client.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <linux/input-event-codes.h>
#include <sstream>
#include <string>
#include <string_view>
#include <wayland-client.h>

namespace {

void addGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t version) {
    constexpr std::uint32_t kWithKeys = 4;
    if (std::string_view(interface) != org_kde_kwin_fake_input_interface.name || version < kWithKeys)
        return;
    *static_cast<org_kde_kwin_fake_input**>(data) = static_cast<org_kde_kwin_fake_input*>(
        wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, kWithKeys));
}
void removeGlobal(void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}
constexpr wl_registry_listener kListener{addGlobal, removeGlobal};

constexpr std::uint32_t kFinger = 0; // any number

/// A place in the compositor's coordinates, as its protocol sends it.
struct Point {
    wl_fixed_t x;
    wl_fixed_t y;
};

Point readPoint(std::istream& words) {
    double x = 0;
    double y = 0;
    words >> x >> y;
    return {wl_fixed_from_double(x), wl_fixed_from_double(y)};
}

void inject(org_kde_kwin_fake_input* input, const std::string& line) {
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (command == "key") {
        std::uint32_t code = 0;
        std::uint32_t isPressed = 0;
        words >> code >> isPressed;
        org_kde_kwin_fake_input_keyboard_key(input, code, isPressed);
    } else if (command == "move") {
        const Point place = readPoint(words);
        org_kde_kwin_fake_input_pointer_motion_absolute(input, place.x, place.y);
    } else if (command == "button") {
        std::uint32_t isPressed = 0;
        words >> isPressed;
        org_kde_kwin_fake_input_button(input, BTN_LEFT, isPressed);
    } else if (command == "touch") {
        const Point place = readPoint(words);
        org_kde_kwin_fake_input_touch_down(input, kFinger, place.x, place.y);
        org_kde_kwin_fake_input_touch_frame(input);
    } else if (command == "move-touch") {
        const Point place = readPoint(words);
        org_kde_kwin_fake_input_touch_motion(input, kFinger, place.x, place.y);
        org_kde_kwin_fake_input_touch_frame(input);
    } else if (command == "end-touch") {
        org_kde_kwin_fake_input_touch_up(input, kFinger);
        org_kde_kwin_fake_input_touch_frame(input);
    }
}

int fail(const char* reason) {
    std::cerr << reason << '\n';
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return fail("usage: tessarel_fake_input SOCKET");
    wl_display* const display = wl_display_connect(argv[1]);
    if (display == nullptr)
        return fail("no Wayland socket");
    org_kde_kwin_fake_input* input = nullptr;
    wl_registry_add_listener(wl_display_get_registry(display), &kListener, &input);
    if (wl_display_roundtrip(display) < 0 || input == nullptr)
        return fail("the compositor accepts no synthetic input");
    org_kde_kwin_fake_input_authenticate(input, "test", "test");
    if (wl_display_roundtrip(display) < 0)
        return fail("lost the compositor");
    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        inject(input, line);
        if (wl_display_roundtrip(display) < 0)
            return fail("lost the compositor");
        std::cout << "done" << std::endl;
    }
}
