// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/frame.h"
#include "support/x11/keyboard.h"
#include "support/x11/x_server.h"

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::x11test {

/// Options of a new window. Values that are not set are left out of its properties.
struct WindowOptions {
    struct Pair {
        int width = 0;
        int height = 0;
    };

    std::string title = "window";
    std::string instance = "testclient";
    std::string className = "TestClient";
    std::string gtkApplicationId = {};
    Frame client = {100, 120, 500, 400}; ///< of the client window; requested as a user-specified position
    std::optional<int> gravity = {};     ///< for example XCB_GRAVITY_STATIC
    std::optional<Pair> step = {};       ///< size increments
    std::optional<Pair> base = {};       ///< base size, from which increments count
    std::optional<Pair> minimum = {};
    std::optional<Pair> maximum = {};
    std::optional<Extents> shadow = {};   ///< drawn by the client around its visible frame
    bool decorated = true;                ///< false requests no decoration from the window manager
    std::vector<std::string> states = {}; ///< initial states, such as "_NET_WM_STATE_FULLSCREEN"
    bool iconic = false;
    std::string type = {}; ///< for example "_NET_WM_WINDOW_TYPE_DIALOG"
    xcb_window_t transientFor = XCB_WINDOW_NONE;
    bool processId = true;
    bool overrideRedirect = false;
    std::vector<std::uint32_t> strut = {};     ///< the twelve values of a panel
    std::optional<std::uint32_t> desktop = {}; ///< the virtual desktop that it requests, from 0
    /// If set, the client moves the window back to `client` this long after it was mapped, as programs do
    /// that restore their windows.
    std::optional<std::chrono::milliseconds> comesBackAfter = {};
};

/// Numbers of ConfigureNotify events that a window has received: real ones from the server, and synthetic
/// ones from the window manager.
struct ConfigureCount {
    int real = 0;
    int synthetic = 0;

    [[nodiscard]] int all() const { return real + synthetic; }
};

/// The outcome of `WindowOptions::comesBackAfter`.
enum class ComeBack {
    NotYet,
    First, ///< the window moved back before it was resized
    Late,  ///< the window was resized before it moved back
};

/// Another program on the desktop, with windows that a test specifies.
class TestClient {
public:
    /// Starts the client and waits until it is connected: the server assigns the ids of a client that has
    /// exited to the next one that connects.
    explicit TestClient(const XServer& server);

    [[nodiscard]] pid_t pid() const { return m_process.pid(); }
    [[nodiscard]] ChildProcess& process() { return m_process; }

    /// Creates and maps a window. Does not wait until it is managed.
    [[nodiscard]] xcb_window_t open(const WindowOptions& options = {});
    void destroy(xcb_window_t window);
    /// Opens `count` windows, one after another, and destroys each as soon as it has been mapped.
    void openAndClose(const WindowOptions& options, int count);

    [[nodiscard]] ComeBack comeBack(xcb_window_t window);
    /// Makes the client move a window to `client`, as if by its own decision.
    void moveBack(xcb_window_t window, const Frame& client);

    [[nodiscard]] ConfigureCount configures(xcb_window_t window);

    /// Sets a property to arbitrary bytes, of any type and of 8, 16 or 32 bits, valid or not.
    void setProperty(xcb_window_t window, std::string_view name, std::string_view type, int format,
                     std::string_view bytes);
    void setCardinals(xcb_window_t window, std::string_view name, const std::vector<std::uint32_t>& values);

    /// Grabs a combination as a hot key, or releases it. Returns false if another client has grabbed it.
    [[nodiscard]] bool grabKey(const Combination& combination);
    void ungrabKey(const Combination& combination);
    /// Grabs the keyboard, as an open menu does. Returns false if another client has grabbed it.
    [[nodiscard]] bool grabKeyboard();
    void ungrabKeyboard();
    /// Grabs the pointer. Returns false if another client has grabbed it.
    [[nodiscard]] bool grabMouse();
    void ungrabMouse();
    /// Returns the number of key presses that the client has received so far.
    [[nodiscard]] int keyPresses();

    /// Stops the program: it processes nothing until it is resumed.
    void stop();
    void resume();

private:
    std::string ask(const std::string& command);

    ChildProcess m_process;
};

} // namespace tessarel::x11test
