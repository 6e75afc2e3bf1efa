#include "platform/x11/window_manager_check.h"

#include "platform/x11/atoms.h"
#include "platform/x11/reply.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tessarel::x11 {

namespace {

struct Hint {
    Atom atom;
    std::string_view name;
};

constexpr std::array kNeededHints = std::to_array<Hint>({
    {Atom::NetMoveResizeWindow, "_NET_MOVERESIZE_WINDOW"},
    {Atom::NetFrameExtents, "_NET_FRAME_EXTENTS"},
    {Atom::NetActiveWindow, "_NET_ACTIVE_WINDOW"},
    {Atom::NetClientList, "_NET_CLIENT_LIST"},
    {Atom::NetClientListStacking, "_NET_CLIENT_LIST_STACKING"},
    {Atom::NetWmState, "_NET_WM_STATE"},
});

using PropertyReply = Reply<xcb_get_property_reply_t>;

xcb_get_property_cookie_t askFor(Connection& connection, xcb_window_t window, Atom property,
                                 xcb_atom_t type) {
    constexpr std::uint32_t kMostValues = 4096;
    return xcb_get_property(connection.xcb(), 0, window, connection.atom(property), type, 0, kMostValues);
}

/// The values of a property of 32-bit values; none when it has another form.
std::span<const std::uint32_t> values(const PropertyReply& reply) {
    if (!reply || reply->format != 32)
        return {};
    const auto* const first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, reply->value_len};
}

xcb_window_t firstOf(const PropertyReply& reply) {
    const auto windows = values(reply);
    return windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front();
}

} // namespace

WindowManagerCheck::WindowManagerCheck(Connection& connection)
    : m_connection(connection),
      m_reads(connection.onRead([this](const Connection::Event& event) { watch(event); })) {
    connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

const WindowManagerState& WindowManagerCheck::state() {
    if (!m_current) {
        m_current = true; // set before asking: what changes in between makes it false again
        m_state = ask();
    }
    return m_state;
}

WindowManagerState WindowManagerCheck::ask() {
    const xcb_window_t root = m_connection.root();
    const auto window = askFor(m_connection, root, Atom::NetSupportingWmCheck, XCB_ATOM_WINDOW);
    const auto supported = askFor(m_connection, root, Atom::NetSupported, XCB_ATOM_ATOM);
    m_window = firstOf(m_connection.reply<xcb_get_property_reply>(window));
    const PropertyReply supportedReply = m_connection.reply<xcb_get_property_reply>(supported);

    WindowManagerState state;
    state.running = m_window != XCB_WINDOW_NONE && namesItself(m_window);
    const auto atoms = values(supportedReply);
    for (const auto& [atom, name] : kNeededHints) {
        if (std::ranges::find(atoms, m_connection.atom(atom)) == atoms.end())
            state.missingHints.push_back(name);
    }
    return state;
}

bool WindowManagerCheck::namesItself(xcb_window_t window) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY; // its end, of which the root tells nothing
    xcb_change_window_attributes(m_connection.xcb(), window, XCB_CW_EVENT_MASK, &events);
    const auto itself = askFor(m_connection, window, Atom::NetSupportingWmCheck, XCB_ATOM_WINDOW);
    return firstOf(m_connection.reply<xcb_get_property_reply>(itself)) == window;
}

void WindowManagerCheck::watch(const Connection::Event& event) {
    if (event.response_type == XCB_DESTROY_NOTIFY) {
        const auto& destroyed = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        m_current = m_current && destroyed.window != m_window;
    }
    if (event.response_type == XCB_PROPERTY_NOTIFY) {
        const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        const bool ours = changed.window == m_connection.root() &&
                          (changed.atom == m_connection.atom(Atom::NetSupportingWmCheck) ||
                           changed.atom == m_connection.atom(Atom::NetSupported));
        m_current = m_current && !ours;
    }
}

} // namespace tessarel::x11
