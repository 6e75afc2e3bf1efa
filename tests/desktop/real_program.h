// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/desktop.h"
#include "support/x11/child_process.h"

#include <xcb/xcb.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace tessarel::x11test {

/// An installed program with the arguments to start it.
struct RealProgram {
    const char* name;
    std::vector<std::string> arguments;
};

/// Grows by some pixels shortly after its width has changed.
inline const RealProgram kCalculator{"calculator", {"gnome-calculator"}};
/// Takes sizes in steps. It needs a session bus.
inline const RealProgram kGtk3Terminal{"gtk3_terminal",
                                       {"dbus-run-session", "--", "gnome-terminal", "--wait", "--", "cat"}};
inline const RealProgram kXterm{"xterm", {"xterm", "-geometry", "60x12+200+150", "-e", "cat"}};
inline const RealProgram kGtk3Program{"gtk3", {"mousepad", "--disable-server"}};
inline const RealProgram kGtk4Program{"gtk4", {"gtk4-print-editor"}};
inline const RealProgram kQtProgram{"qt", {"featherpad", "--standalone"}};

std::ostream& operator<<(std::ostream& stream, const RealProgram& program);

/// A running program and its window. The destructor ends the program.
struct StartedProgram {
    std::unique_ptr<ChildProcess> process;
    xcb_window_t window = XCB_WINDOW_NONE; ///< already managed
};

[[nodiscard]] StartedProgram start(const RealProgram& program, Desktop& desktop);

} // namespace tessarel::x11test
