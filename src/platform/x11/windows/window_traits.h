#pragma once

#include "platform/x11/server/connection.h"
#include "ports/process_id.h"

#include <xcb/res.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tessarel::x11 {

/// What a client says its window is for.
enum class WindowType { Unspecified, Normal, Dialog, Utility, Splash, Toolbar, Menu, Other };

/// What stays the same about a window while it is open. Names are UTF-8.
struct WindowTraits {
    WindowType type = WindowType::Unspecified;
    bool isTransient = false;                 ///< belongs to another window
    std::optional<std::string> applicationId; ///< what it says that its application is called; never empty
    std::optional<std::string> windowClass;   ///< never empty
};

/// The first type in a client's list that we know, most wanted first.
[[nodiscard]] WindowType typeFrom(const Connection& connection, std::span<const std::uint32_t> atoms);

/// The class, which is the second of the two strings of WM_CLASS; empty when it is missing.
[[nodiscard]] std::string classFrom(const std::string& wmClass);

/// The questions for `WindowTraits`, sent and not answered yet. Every request is collected once.
class TraitsRequest {
public:
    TraitsRequest(Connection& connection, xcb_window_t window);

    /// A window that has gone has no traits.
    [[nodiscard]] WindowTraits collect();

private:
    [[nodiscard]] std::optional<std::string> collectApplicationId();
    [[nodiscard]] std::optional<std::string> collectClass();

    Connection* m_connection;
    xcb_get_property_cookie_t m_type;
    xcb_get_property_cookie_t m_transientFor;
    xcb_get_property_cookie_t m_gtkApplicationId;
    xcb_get_property_cookie_t m_desktopFile;
    xcb_get_property_cookie_t m_class;
};

/// The question for the process that owns a window. Every request is collected once.
class PidRequest {
public:
    PidRequest(Connection& connection, xcb_window_t window);

    /// The process as the server sees it, which cannot be forged; what the window claims where the server
    /// cannot tell, as for a client on another machine.
    [[nodiscard]] std::optional<ProcessId> collect();

private:
    Connection* m_connection;
    std::optional<xcb_res_query_client_ids_cookie_t> m_client;
    xcb_get_property_cookie_t m_claim;
};

} // namespace tessarel::x11
