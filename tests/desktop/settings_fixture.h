// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/screen_reader.h"
#include "support/x11/keyboard.h"
#include "support/x11/mouse.h"
#include "support/x11/observer.h"
#include "support/x11/program.h"
#include "support/x11/test_client.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::x11test {

/// The running program and its settings window, used with synthetic keys and pointer events and read by a
/// screen reader.
class SettingsDesktopTest : public testing::Test {
protected:
    SettingsDesktopTest();
    /// Terminates the program if it is still running and expects a clean exit.
    ~SettingsDesktopTest() override;

    void SetUp() override;

    /// Starts a second instance, which opens the window, and waits until the window has the focus.
    void openSettings();
    /// Shows a tab of the window.
    void showTab(const std::string& name);

    /// Waits for a showing part of the program's windows. Throws std::runtime_error if it does not appear.
    Accessible part(const std::string& role, const std::string& name);
    Accessible button(const std::string& name) { return part("push button", name); }
    void click(const Accessible& target);
    /// Waits until the accessible description of `target` is `description`.
    testing::AssertionResult comesToSay(const Accessible& target, const std::string& description);
    /// Waits until the program has processed all input.
    [[nodiscard]] bool waitUntilAtRest() { return program->waitUntilAtRest(observer); }
    /// Waits until `holds` returns true.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& holds) { return observer.waitUntil(holds); }

    XServer server;
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    Mouse mouse{observer};
    ScreenReader reader{server.environment()};
    std::optional<Program> program;
    xcb_window_t window = XCB_WINDOW_NONE; ///< the settings window
};

} // namespace tessarel::x11test
