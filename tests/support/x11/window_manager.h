// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/x_server.h"

#include <array>
#include <memory>
#include <ostream>
#include <string_view>

namespace tessarel::x11test {

enum class WindowManagerKind {
    Openbox,
    Xfwm4,
    Metacity,
    Marco,
    Icewm,
    Fluxbox,
    Kwin,
    Mutter,
    Jwm,
    Fvwm3,
    Awesome,
    WindowMaker,
    Pekwm,
    Blackbox,
    Herbstluftwm,
    I3
};

/// All but herbstluftwm and i3, which tile windows unless they float.
inline constexpr std::array kAllWindowManagers = {
    WindowManagerKind::Openbox, WindowManagerKind::Xfwm4,    WindowManagerKind::Metacity,
    WindowManagerKind::Marco,   WindowManagerKind::Icewm,    WindowManagerKind::Fluxbox,
    WindowManagerKind::Kwin,    WindowManagerKind::Mutter,   WindowManagerKind::Jwm,
    WindowManagerKind::Fvwm3,   WindowManagerKind::Awesome,  WindowManagerKind::WindowMaker,
    WindowManagerKind::Pekwm,   WindowManagerKind::Blackbox,
};

[[nodiscard]] std::string_view name(WindowManagerKind kind);
std::ostream& operator<<(std::ostream& stream, WindowManagerKind kind);

/// Whether a window manager keeps its default key bindings.
enum class OwnKeys { Kept, Dropped };

/// Whether a window manager that can composite does so.
enum class Compositing { Off, On };

/// Returns the options of a server on which the window manager can run.
[[nodiscard]] XServerOptions serverFor(WindowManagerKind kind, XServerOptions options = {},
                                       Compositing compositing = Compositing::Off);

/// A private session bus. Services can be started on it only for a window manager that keeps its keys.
class SessionBus {
public:
    SessionBus(const Environment& environment, OwnKeys keys);

    [[nodiscard]] const std::string& address() const { return m_address; }

private:
    TemporaryFolder m_folder;
    ChildProcess m_process;
    std::string m_address;
};

/// A running window manager with its default configuration, except for key bindings and compositing.
class WindowManager {
public:
    /// Starts the window manager and waits until it manages windows. Throws std::runtime_error if it does not
    /// start, or if the server lacks what it needs (see `serverFor`).
    WindowManager(const XServer& server, WindowManagerKind kind, OwnKeys keys = OwnKeys::Dropped,
                  Compositing compositing = Compositing::Off);

    [[nodiscard]] WindowManagerKind kind() const { return m_kind; }
    [[nodiscard]] ChildProcess& process() { return *m_process; }

private:
    /// Starts the process. Returns whether it manages windows.
    [[nodiscard]] bool runs(const XServer& server, Compositing compositing);

    WindowManagerKind m_kind;
    std::unique_ptr<SessionBus> m_bus; // must outlive the window manager
    std::unique_ptr<ChildProcess> m_process;
};

} // namespace tessarel::x11test
