// SPDX-License-Identifier: MIT

#include "platform/x11/windows/window_traits.h"

#include "platform/x11/server/property.h"
#include "platform/xdg/utf8.h"

#include <array>
#include <limits>
#include <tuple>
#include <utility>

namespace tessarel::x11 {

namespace {

constexpr std::uint32_t kMostTypes = 64;
constexpr std::uint32_t kLongestName = 256; // in 32-bit units

// Types that are not in this table are skipped in favour of the next one in the client's list.
constexpr std::array kTypes = {
    std::pair(Atom::NetWmWindowTypeNormal, WindowType::Normal),
    std::pair(Atom::NetWmWindowTypeDialog, WindowType::Dialog),
    std::pair(Atom::NetWmWindowTypeUtility, WindowType::Utility),
    std::pair(Atom::NetWmWindowTypeSplash, WindowType::Splash),
    std::pair(Atom::NetWmWindowTypeToolbar, WindowType::Toolbar),
    std::pair(Atom::NetWmWindowTypeMenu, WindowType::Menu),
    std::pair(Atom::NetWmWindowTypeCombo, WindowType::Other),
    std::pair(Atom::NetWmWindowTypeDesktop, WindowType::Other),
    std::pair(Atom::NetWmWindowTypeDnd, WindowType::Other),
    std::pair(Atom::NetWmWindowTypeDock, WindowType::Other),
    std::pair(Atom::NetWmWindowTypeDropdownMenu, WindowType::Other),
    std::pair(Atom::NetWmWindowTypeNotification, WindowType::Other),
    std::pair(Atom::NetWmWindowTypePopupMenu, WindowType::Other),
    std::pair(Atom::NetWmWindowTypeTooltip, WindowType::Other),
};

/// Returns the value as a process id if it can be one.
std::optional<ProcessId> plausiblePid(std::optional<std::uint32_t> value) {
    const bool isPlausible =
        value && *value > 0 && *value <= std::uint32_t{std::numeric_limits<ProcessId>::max()};
    return isPlausible ? std::optional(static_cast<ProcessId>(*value)) : std::nullopt;
}

/// Returns the first process id in the reply. XRes replies with a list of client ids of any kind.
std::optional<std::uint32_t> pidIn(const xcb_res_query_client_ids_reply_t* reply) {
    if (!reply)
        return std::nullopt;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        const bool isPid = (ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0;
        if (isPid && xcb_res_client_id_value_value_length(ids.data) == 1)
            return *xcb_res_client_id_value_value(ids.data);
    }
    return std::nullopt;
}

} // namespace

WindowType typeFrom(const Atoms& known, std::span<const std::uint32_t> atoms) {
    for (const std::uint32_t atom : atoms) {
        for (const auto& [name, type] : kTypes) {
            if (known[name] == atom)
                return type;
        }
    }
    return WindowType::Unspecified;
}

std::pair<std::string, std::string> classFrom(const std::string& wmClass) {
    const auto instanceEnd = wmClass.find('\0');
    return {xdg::toUtf8(wmClass),
            instanceEnd == std::string::npos ? std::string() : xdg::toUtf8(wmClass.substr(instanceEnd + 1))};
}

TraitsRequest::TraitsRequest(Connection& connection, xcb_window_t window)
    : m_connection(&connection),
      m_type(requestProperty(connection, window, connection.atom(Atom::NetWmWindowType), XCB_ATOM_ATOM,
                             kMostTypes)),
      m_transientFor(requestProperty(connection, window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 1)),
      m_gtkApplicationId(requestProperty(connection, window, connection.atom(Atom::GtkApplicationId),
                                         connection.atom(Atom::Utf8String), kLongestName)),
      m_desktopFile(requestProperty(connection, window, connection.atom(Atom::KdeNetWmDesktopFile),
                                    connection.atom(Atom::Utf8String), kLongestName)),
      m_class(
          requestProperty(connection, window, XCB_ATOM_WM_CLASS, XCB_GET_PROPERTY_TYPE_ANY, kLongestName)),
      m_clientMachine(requestProperty(connection, window, XCB_ATOM_WM_CLIENT_MACHINE,
                                      XCB_GET_PROPERTY_TYPE_ANY, kLongestName)) {}

WindowTraits TraitsRequest::collect() {
    const auto type = propertyReply(*m_connection, m_type);
    const auto transientFor = propertyReply(*m_connection, m_transientFor);
    auto names = collectNames();
    const auto clientMachine = propertyReply(*m_connection, m_clientMachine);
    return {typeFrom(m_connection->atoms(), values(type)), value(transientFor).value_or(XCB_WINDOW_NONE) != 0,
            std::move(names), xdg::toUtf8(bytes(clientMachine))};
}

xdg::WindowNames TraitsRequest::collectNames() {
    const auto gtkApplicationId = propertyReply(*m_connection, m_gtkApplicationId);
    const auto desktopFile = propertyReply(*m_connection, m_desktopFile);
    const auto wmClass = propertyReply(*m_connection, m_class);
    xdg::WindowNames names;
    for (std::string name : {xdg::toUtf8(bytes(gtkApplicationId)), xdg::toUtf8(bytes(desktopFile))}) {
        if (!name.empty())
            names.announced.push_back(std::move(name));
    }
    std::tie(names.instance, names.windowClass) = classFrom(bytes(wmClass));
    return names;
}

PidRequest::PidRequest(Connection& connection, xcb_window_t window)
    : m_connection(&connection), m_claim(requestNumber(connection, window, Atom::NetWmPid)) {
    if (!connection.extensions().resourceProcessIds)
        return;
    const xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    m_client = xcb_res_query_client_ids(connection.xcb(), 1, &spec);
}

std::optional<ProcessId> PidRequest::collect() {
    const auto claim = propertyReply(*m_connection, m_claim);
    if (m_client) {
        const auto ids = m_connection->reply<xcb_res_query_client_ids_reply>(*m_client);
        const auto pid = plausiblePid(pidIn(ids.get()));
        // XRes derives the client from the id's range, so it replies even for an id without a window. The
        // property's reply is null in that case.
        if (pid && claim)
            return pid;
    }
    return plausiblePid(value(claim));
}

} // namespace tessarel::x11
