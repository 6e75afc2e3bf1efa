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

/// How a window is made; everything that is not given is left out of its properties.
struct WindowOptions {
    struct Pair {
        int width = 0;
        int height = 0;
    };

    std::string title = "window";
    std::string instance = "testclient";
    std::string className = "TestClient";
    std::string gtkApplicationId = {};
    Frame client = {100, 120, 500, 400}; ///< of the client window; its place is asked for as a user would
    std::optional<int> gravity = {};     ///< such as XCB_GRAVITY_STATIC
    std::optional<Pair> step = {};       ///< size increments
    std::optional<Pair> base = {};       ///< size from which steps count
    std::optional<Pair> minimum = {};
    std::optional<Pair> maximum = {};
    std::optional<Extents> shadow = {};   ///< drawn by the client around its visible frame
    bool decorated = true;                ///< false asks the window manager for no decoration
    std::vector<std::string> states = {}; ///< such as "_NET_WM_STATE_FULLSCREEN", from the start
    bool iconic = false;
    std::string type = {}; ///< such as "_NET_WM_WINDOW_TYPE_DIALOG"
    xcb_window_t transientFor = XCB_WINDOW_NONE;
    bool processId = true;
    bool overrideRedirect = false;
    std::vector<std::uint32_t> strut = {};     ///< the twelve values of a panel
    std::optional<std::uint32_t> desktop = {}; ///< number of the desktop that it asks to open on
    /// How long after it has come up the client moves it back to `client`, as programs do that remember where
    /// they were.
    std::optional<std::chrono::milliseconds> comesBackAfter = {};
};

/// How many ConfigureNotify events a window has had from the server, and from the window manager.
struct ConfigureCount {
    int real = 0;
    int synthetic = 0;

    [[nodiscard]] int all() const { return real + synthetic; }
};

/// What has become of a window with `WindowOptions::comesBackAfter`.
enum class ComeBack {
    NotYet,
    First, ///< it has come back before it was given another size
    Late,  ///< it was given another size before it came back
};

/// Another program on the desktop, with windows made to order.
class TestClient {
public:
    /// Starts the client and waits until it is connected: the server gives the ids of a client that has
    /// exited to the next one that connects.
    explicit TestClient(const XServer& server);

    [[nodiscard]] pid_t pid() const { return m_process.pid(); }
    [[nodiscard]] ChildProcess& process() { return m_process; }

    /// Makes a window and maps it; whether it has come up is for the caller to wait for.
    [[nodiscard]] xcb_window_t open(const WindowOptions& options = {});
    void destroy(xcb_window_t window);
    /// Opens so many windows one after the other, each as soon as the one before has been shown and closed.
    void openAndClose(const WindowOptions& options, int count);

    [[nodiscard]] ComeBack comeBack(xcb_window_t window);
    /// Has the client move a window to where it was opened, as by its own decision.
    void moveBack(xcb_window_t window, const Frame& client);

    [[nodiscard]] ConfigureCount configures(xcb_window_t window);

    /// Sets a property to any bytes, of any type, 8, 16 or 32 bits wide, right or wrong.
    void setProperty(xcb_window_t window, std::string_view name, std::string_view type, int format,
                     std::string_view bytes);
    void setCardinals(xcb_window_t window, std::string_view name, const std::vector<std::uint32_t>& values);

    /// Claims a combination as a hot key, or lets go of it. False when another program holds it.
    [[nodiscard]] bool grabKey(const Combination& combination);
    void ungrabKey(const Combination& combination);
    /// Takes the whole keyboard, as an open menu does.
    [[nodiscard]] bool grabKeyboard();
    void ungrabKeyboard();
    /// Takes the mouse, wherever it is.
    [[nodiscard]] bool grabMouse();
    void ungrabMouse();
    /// How many key presses its grabs have brought so far.
    [[nodiscard]] int keyPresses();

    /// Stops the program: it answers nothing until it is resumed.
    void stop();
    void resume();

private:
    std::string ask(const std::string& command);

    ChildProcess m_process;
};

} // namespace tessarel::x11test
