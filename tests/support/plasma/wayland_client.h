// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"
#include "support/x11/child_process.h"

#include <string>

namespace tessarel::plasmatest {

/// Another program on the desktop. Its windows show no new image while their size stays the same, and first
/// take the size again with which they have opened when they leave the maximised state. Its functions return
/// at once.
class WaylandClient {
public:
    struct WindowOptions {
        std::string applicationId = {}; ///< announces none if empty
        bool isDecorated = false;       ///< has a title bar
        Size size = {500, 400};
        Size minimum = {}; ///< no limit when empty
        Size maximum = {}; ///< no limit when empty
        bool announcesLimits = true;
        int parent = 0; ///< the number of the window that this one is a dialog of, if any
    };

    /// Starts the program in the environment of a session.
    explicit WaylandClient(const x11test::Environment& environment);

    [[nodiscard]] x11test::ChildProcess& process() { return m_process; }

    /// Opens a window with the title `titleOf(number)`.
    void open(int number, const WindowOptions& options);
    void close(int number);
    /// Adds a panel along the top edge of the first display, which reserves its height.
    void openPanel(int height);
    /// Changes what the panel reserves. Its frame stays the same.
    void reserve(int height);
    /// Reads nothing that the compositor sends until `resume`, so its windows take no new size.
    void stall();
    void resume();

    [[nodiscard]] static std::string titleOf(int number) { return "window " + std::to_string(number); }

private:
    x11test::ChildProcess m_process;
};

} // namespace tessarel::plasmatest
