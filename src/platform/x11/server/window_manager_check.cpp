// SPDX-License-Identifier: MIT

#include "platform/x11/server/window_manager_check.h"

#include "platform/x11/server/atoms.h"
#include "platform/x11/server/event.h"
#include "platform/x11/server/property.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tessarel::x11 {

namespace {

// Without these Tessarel cannot find the windows. How they are measured and moved depends on other hints, but
// there is a way without each of those.
constexpr std::array kNeededHints = {Atom::NetActiveWindow, Atom::NetClientList};

constexpr std::uint32_t kMostHints = 4096; // atoms; no window manager announces that many

} // namespace

WindowManagerCheck::WindowManagerCheck(Connection& connection)
    : m_connection(connection),
      m_reads(connection.onRead([this](const Connection::Event& event) { watch(event); })) {
    connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

const WindowManagerState& WindowManagerCheck::state() {
    if (!m_current) {
        m_current = true; // set first, so that an event read during the round trips can reset it
        m_state = ask();
    }
    return m_state;
}

WindowManagerState WindowManagerCheck::ask() {
    const xcb_window_t root = m_connection.root();
    const auto window = askForWindow(root);
    const auto supported =
        requestProperty(m_connection, root, m_connection.atom(Atom::NetSupported), XCB_ATOM_ATOM, kMostHints);
    WindowManagerState state;
    state.checkWindow = value(propertyReply(m_connection, window)).value_or(XCB_WINDOW_NONE);
    const PropertyReply supportedReply = propertyReply(m_connection, supported);

    m_state.checkWindow = state.checkWindow; // the next round trip may already read its DestroyNotify
    state.running = namesItself(state.checkWindow);
    const std::span<const std::uint32_t> atoms = values(supportedReply);
    const auto announces = [&](Atom atom) {
        return std::ranges::find(atoms, m_connection.atom(atom)) != atoms.end();
    };
    for (const Atom atom : kNeededHints) {
        if (!announces(atom))
            state.missingHints.push_back(nameOf(atom));
    }
    state.movesOnMessage = announces(Atom::NetMoveResizeWindow);
    state.publishesExtents = announces(Atom::NetFrameExtents);
    state.maximizes = announces(Atom::NetWmStateMaximizedHorz) && announces(Atom::NetWmStateMaximizedVert);
    return state;
}

/// Returns whether the check window exists and names itself, as EWMH requires. Selects its DestroyNotify.
bool WindowManagerCheck::namesItself(xcb_window_t window) {
    if (window == XCB_WINDOW_NONE || window == m_connection.root())
        return false; // selecting events on the root window here would replace its event mask
    // The hint on the root window outlives a window manager that dies; only DestroyNotify reports its end.
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.xcb(), window, XCB_CW_EVENT_MASK, &events);
    return value(propertyReply(m_connection, askForWindow(window))) == window;
}

xcb_get_property_cookie_t WindowManagerCheck::askForWindow(xcb_window_t namedBy) {
    return requestProperty(m_connection, namedBy, m_connection.atom(Atom::NetSupportingWmCheck),
                           XCB_ATOM_WINDOW, 1);
}

/// Invalidates the cached state when the check window is destroyed or the announced hints change.
void WindowManagerCheck::watch(const Connection::Event& event) {
    const bool gone = event.response_type == XCB_DESTROY_NOTIFY &&
                      eventAs<xcb_destroy_notify_event_t>(event).window == m_state.checkWindow;
    const auto changed = changedProperty(event, m_connection.root());
    const bool changedItself = changed == m_connection.atom(Atom::NetSupportingWmCheck) ||
                               changed == m_connection.atom(Atom::NetSupported);
    if (gone || changedItself)
        m_current = false;
}

} // namespace tessarel::x11
