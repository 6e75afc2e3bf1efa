// SPDX-License-Identifier: MIT

#include "desktop/screen_reader.h"
#include "look/palette.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/program.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <QColor>
#include <QPalette>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

namespace tessarel::x11test {
namespace {

/// Returns the colour of a pixel of the screen.
QColor pixel(Observer& observer, int x, int y) {
    xcb_connection_t* const xcb = observer.x().get();
    const auto image = own(xcb_get_image_reply(xcb,
                                               xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, observer.root(),
                                                             static_cast<std::int16_t>(x),
                                                             static_cast<std::int16_t>(y), 1, 1, ~0U),
                                               nullptr));
    if (!image)
        return {};
    const std::uint8_t* const bytes = xcb_get_image_data(image.get());
    return {bytes[2], bytes[1], bytes[0]};
}

TEST(SettingsLookTest, TheEnvironmentDoesNotReplaceTheStyle) {
    XServer server;
    const WindowManager manager(server, WindowManagerKind::Openbox);
    Observer observer(server.display());
    Keyboard keyboard(server, observer);
    const ScreenReader reader(server.environment());
    Environment environment = reader.environment();
    environment["QT_STYLE_OVERRIDE"] = "Windows";
    environment["QT_QPA_PLATFORMTHEME"] = "gtk3";
    writeSettings(server, R"({"hasOnboarded":true})");
    Program program(environment);
    ASSERT_TRUE(program.waitUntilReady(observer, keyboard)) << program.errors();
    ASSERT_TRUE(observer.waitUntil([&] { return reader.knows("Tessarel"); })) << program.errors();
    ASSERT_NE(openSettingsWindow(observer, environment), xcb_window_t{XCB_WINDOW_NONE});
    std::optional<Accessible> button;
    ASSERT_TRUE(observer.waitUntil([&] {
        button = reader.find("Tessarel", "push button", "Save as...");
        return button.has_value();
    }));

    // From outside to inside: the window, the outline, the button.
    const QPalette colors = paletteOf({});
    const std::string expected = colors.color(QPalette::Window).name().toStdString() + " " +
                                 colors.color(QPalette::Mid).name().toStdString() + " " +
                                 colors.color(QPalette::Button).name().toStdString();
    const Frame frame = button->frame;
    std::string found;
    EXPECT_TRUE(observer.waitUntil([&] {
        found.clear();
        for (const int x : {-1, 0, 1})
            found += (found.empty() ? "" : " ") +
                     pixel(observer, frame.x + x, frame.y + frame.height / 2).name().toStdString();
        return found == expected;
    })) << found
        << " instead of " << expected;
    EXPECT_EQ(program.terminate(), 0);
}

} // namespace
} // namespace tessarel::x11test
