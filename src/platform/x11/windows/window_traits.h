// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "platform/xdg/applications/program_names.h"
#include "ports/desktop/process_id.h"

#include <xcb/res.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace tessarel::x11 {

/// The functional type of a window (`_NET_WM_WINDOW_TYPE`). `Other` covers docks, desktops, pop-up menus,
/// tooltips and everything else that a user does not work in.
enum class WindowType { Unspecified, Normal, Dialog, Utility, Splash, Toolbar, Menu, Other };

/// Properties of a window that stay the same while it is open. Strings are UTF-8.
struct WindowTraits {
    WindowType type = WindowType::Unspecified;
    bool isTransient = false; ///< WM_TRANSIENT_FOR names another window
    /// `_GTK_APPLICATION_ID` and `_KDE_NET_WM_DESKTOP_FILE`, and WM_CLASS.
    xdg::WindowNames names;
    std::string clientMachine; ///< host name of the client's machine; empty when unknown
};

/// Returns the first known type in `_NET_WM_WINDOW_TYPE`, which clients sort by preference, or `Unspecified`.
[[nodiscard]] WindowType typeFrom(const Atoms& known, std::span<const std::uint32_t> atoms);

/// Returns the two strings in WM_CLASS, instance and class. The class is empty when it is missing.
[[nodiscard]] std::pair<std::string, std::string> classFrom(const std::string& wmClass);

/// The pending requests for `WindowTraits`. `collect` must be called once.
class TraitsRequest {
public:
    /// Sends the requests. `connection` must outlive this object.
    TraitsRequest(Connection& connection, xcb_window_t window);

    /// Waits for the replies. Returns default values when the window does not exist.
    [[nodiscard]] WindowTraits collect();

private:
    [[nodiscard]] xdg::WindowNames collectNames();

    Connection* m_connection;
    xcb_get_property_cookie_t m_type;
    xcb_get_property_cookie_t m_transientFor;
    xcb_get_property_cookie_t m_gtkApplicationId;
    xcb_get_property_cookie_t m_desktopFile;
    xcb_get_property_cookie_t m_class;
    xcb_get_property_cookie_t m_clientMachine;
};

/// The pending requests for the process that owns a window. `collect` must be called once.
class PidRequest {
public:
    /// Sends the requests. `connection` must outlive this object.
    PidRequest(Connection& connection, xcb_window_t window);

    /// Waits for the replies and returns the process id.
    ///
    /// Prefers the id that the server knows from XRes, which cannot be forged and does not depend on the
    /// client. Falls back to `_NET_WM_PID` where the server has none, as for a client on another machine.
    /// Returns `std::nullopt` when neither is known or the window does not exist.
    [[nodiscard]] std::optional<ProcessId> collect();

private:
    Connection* m_connection;
    std::optional<xcb_res_query_client_ids_cookie_t> m_client;
    xcb_get_property_cookie_t m_claim; ///< `_NET_WM_PID`
};

} // namespace tessarel::x11
