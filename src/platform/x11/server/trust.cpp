// SPDX-License-Identifier: MIT

#include "platform/x11/server/trust.h"

#include "model/config.h"

#include <xcb/randr.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarel::x11 {

namespace {

/// Returns the words separated by commas.
std::string joined(const std::vector<std::string_view>& words) {
    std::string text;
    for (const std::string_view word : words) {
        if (!text.empty())
            text += ", ";
        text += word;
    }
    return text;
}

/// Xwayland before 23.1 does not have the extension; its monitors are called XWAYLAND0 and so on.
bool hasMonitorsOfXwayland(Connection& connection) {
    if (!connection.extensions().randrMonitors)
        return false;
    xcb_connection_t* const xcb = connection.xcb();
    const auto monitors =
        connection.reply<xcb_randr_get_monitors_reply>(xcb_randr_get_monitors(xcb, connection.root(), 1));
    if (!monitors || monitors->nMonitors == 0)
        return false;
    const auto first = xcb_randr_get_monitors_monitors_iterator(monitors.get());
    const auto name = connection.reply<xcb_get_atom_name_reply>(xcb_get_atom_name(xcb, first.data->name));
    return name && std::string_view(xcb_get_atom_name_name(name.get()),
                                    static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())))
                       .starts_with("XWAYLAND");
}

} // namespace

Session sessionOf(Connection& connection, const char* waylandDisplay, const char* sessionType) {
    const std::string_view display = waylandDisplay ? waylandDisplay : "";
    const std::string_view type = sessionType ? sessionType : "";
    const bool mayBeXwayland = type == "wayland" || !display.empty();
    const bool isXwayland =
        mayBeXwayland && (connection.extensions().isXwayland || hasMonitorsOfXwayland(connection));
    return isXwayland ? Session::Wayland : Session::X11;
}

bool X11Trust::isTrusted() {
    return m_session == Session::X11 && m_windowManager.state().suffices();
}

bool X11Trust::mayComeYet() {
    return m_session == Session::X11 && !m_windowManager.state().running;
}

SubscriptionPtr X11Trust::onChange(std::function<void()> changed) {
    return m_connection.onEvent([changed = std::move(changed)](const Connection::Event&) { changed(); });
}

Alert X11Trust::explanation() {
    const std::string appName(Config::appName);
    Alert alert{appName + " cannot move windows yet", {}, {"OK"}};
    if (m_session == Session::Wayland) {
        alert.informativeText =
            "This is a Wayland session in which " + appName +
            " cannot move windows. Log out, choose KDE Plasma or an X11 (Xorg) session, and start " +
            appName + " again.";
    } else if (!m_windowManager.state().running) {
        alert.informativeText = "No window manager is running on this display. " + appName +
                                " works as soon as one has been started.";
    } else {
        alert.informativeText = "The window manager of this display does not offer what " + appName +
                                " needs: " + joined(m_windowManager.state().missingHints) + ".";
    }
    return alert;
}

} // namespace tessarel::x11
