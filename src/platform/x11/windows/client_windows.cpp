// SPDX-License-Identifier: MIT

#include "platform/x11/windows/client_windows.h"

#include "platform/x11/server/property.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <unordered_set>
#include <utility>

namespace tessarel::x11 {

namespace {

/// `_NET_ACTIVE_WINDOW` holds one window, but some window managers append an empty second value.
constexpr std::uint32_t kMostActiveWindows = 16;

/// In bits. The lower half of a key is the window id, the upper half the process id.
constexpr auto kHalfAKey = std::numeric_limits<std::uintptr_t>::digits / 2;

xcb_get_property_cookie_t requestActiveWindow(Connection& connection) {
    return requestProperty(connection, connection.root(), connection.atom(Atom::NetActiveWindow),
                           XCB_ATOM_WINDOW, kMostActiveWindows);
}

/// Returns where to read the extents of a window that does not publish them.
ExtentsSource extentsSource(const WindowManagerState& manager) {
    return manager.running && !manager.publishesExtents ? ExtentsSource::FrameWindow
                                                        : ExtentsSource::Properties;
}

/// Returns the first value of `_NET_ACTIVE_WINDOW`, or XCB_WINDOW_NONE.
xcb_window_t activeWindowIn(const PropertyReply& reply) {
    const auto active = values(reply);
    return active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active.front();
}

/// The pending requests for the lists of managed windows. `collect` must be called once.
class ListRequest {
public:
    explicit ListRequest(Connection& connection)
        : m_connection(connection), m_stacking(requestWindowList(connection, Atom::NetClientListStacking)),
          m_list(requestWindowList(connection, Atom::NetClientList)) {}

    /// Waits for the replies and returns the windows, front to back.
    [[nodiscard]] std::vector<xcb_window_t> collect() {
        const auto stacking = propertyReply(m_connection, m_stacking);
        const auto list = propertyReply(m_connection, m_list);
        return frontToBackFrom(values(stacking), values(list));
    }

private:
    Connection& m_connection;
    xcb_get_property_cookie_t m_stacking;
    xcb_get_property_cookie_t m_list;
};

} // namespace

std::vector<xcb_window_t> frontToBackFrom(std::span<const std::uint32_t> stacking,
                                          std::span<const std::uint32_t> list) {
    // Both lists are merged, because a window manager may not set the stacking list while there is only one
    // window. `_NET_CLIENT_LIST` is oldest first, which stands in for bottom to top.
    std::vector<xcb_window_t> windows;
    std::unordered_set<xcb_window_t> seen{XCB_WINDOW_NONE};
    for (const auto bottomToTop : {stacking, list}) {
        std::copy_if(bottomToTop.rbegin(), bottomToTop.rend(), std::back_inserter(windows),
                     [&](xcb_window_t window) { return seen.insert(window).second; });
    }
    return windows;
}

std::uintptr_t elementKey(ProcessId pid, xcb_window_t window) {
    return (static_cast<std::uintptr_t>(pid) << kHalfAKey) + window;
}

/// The pending requests for everything that is not cached about one window. `collect` must be called once.
class ClientWindows::Questions {
public:
    Questions(ClientWindows& windows, xcb_window_t window) : m_windows(windows), m_window(window) {
        const Known& known = windows.m_known[window];
        if (!known.frame)
            m_frame.emplace(windows.m_connection, window, extentsSource(windows.manager()));
        if (!known.traits)
            m_traits.emplace(windows.m_connection, window);
        if (!windows.m_pids.contains(window))
            m_pid.emplace(windows.m_connection, window);
    }

    /// Waits for the replies, stores them in the caches and returns the window's entry.
    const Known& collect() {
        Known& known = m_windows.m_known[m_window];
        if (m_frame)
            known.frame = m_frame->collect();
        if (m_traits)
            known.traits = m_traits->collect();
        if (m_pid)
            m_windows.m_pids[m_window] = m_pid->collect();
        return known;
    }

private:
    ClientWindows& m_windows;
    xcb_window_t m_window;
    std::optional<FrameRequest> m_frame;
    std::optional<TraitsRequest> m_traits;
    std::optional<PidRequest> m_pid;
};

ClientWindows::ClientWindows(Connection& connection)
    : m_connection(connection), m_manager(connection),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })),
      m_handler(connection.onEvent([this](const Connection::Event& event) { follow(event); })) {
    connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

/// Window ids are reused, so the process ids are read again after the client list has changed.
void ClientWindows::note(const Connection::Event& event) {
    if (changedProperty(event, m_connection.root()) == m_connection.atom(Atom::NetClientList))
        m_pidsOutdated = true;
}

/// Keeps `m_lastActive` up to date, so that `activeWindow` reads the right window ahead when a hot key is
/// pressed.
void ClientWindows::follow(const Connection::Event& event) {
    if (changedProperty(event, m_connection.root()) == m_connection.atom(Atom::NetActiveWindow)) {
        const auto active = propertyReply(m_connection, requestActiveWindow(m_connection));
        m_lastActive = activeWindowIn(active);
    }
}

/// Drops the cached values of an earlier turn. The process ids are kept until the client list changes.
void ClientWindows::startTurn() {
    if (m_turn == m_connection.turn())
        return;
    m_turn = m_connection.turn();
    m_active.reset();
    m_frontToBack.reset();
    m_known.clear();
    if (std::exchange(m_pidsOutdated, false))
        m_pids.clear();
}

/// Checks that the active window is managed, because a window manager may still name a window that has
/// closed, and its id may have been reused.
///
/// Requests the active window, the list and everything about the window that was active last in one round
/// trip.
xcb_window_t ClientWindows::activeWindow() {
    startTurn();
    if (m_active)
        return *m_active;
    const auto cookie = requestActiveWindow(m_connection);
    std::optional<ListRequest> list;
    if (!m_frontToBack)
        list.emplace(m_connection);
    std::optional<Questions> guess;
    if (m_lastActive != XCB_WINDOW_NONE)
        guess.emplace(*this, m_lastActive);
    const auto active = propertyReply(m_connection, cookie);
    if (list)
        m_frontToBack = list->collect();
    if (guess)
        guess->collect();
    m_lastActive = activeWindowIn(active);
    const bool isListed = std::ranges::find(*m_frontToBack, m_lastActive) != m_frontToBack->end();
    const bool isUnlisted = !isListed && hasWindowState(m_lastActive);
    if (isUnlisted)
        m_frontToBack->insert(m_frontToBack->begin(), m_lastActive);
    m_active = isListed || isUnlisted ? m_lastActive : xcb_window_t{XCB_WINDOW_NONE};
    return *m_active;
}

/// Returns whether a window has the state that window managers give to the windows that they manage. pekwm
/// lists a window only when another one opens.
bool ClientWindows::hasWindowState(xcb_window_t window) {
    if (window == XCB_WINDOW_NONE)
        return false;
    const xcb_atom_t type = m_connection.atom(Atom::WmState);
    const auto state = propertyReply(m_connection, requestProperty(m_connection, window, type, type, 2));
    return !values(state).empty();
}

std::optional<Rect> ClientWindows::activeFrame() {
    const xcb_window_t active = activeWindow();
    const auto activesFrame = active == XCB_WINDOW_NONE ? std::nullopt : frame(active);
    return activesFrame ? std::optional(activesFrame->outer()) : std::nullopt;
}

const std::vector<xcb_window_t>& ClientWindows::frontToBack() {
    startTurn();
    if (!m_frontToBack)
        m_frontToBack = ListRequest(m_connection).collect();
    return *m_frontToBack;
}

std::vector<xcb_window_t> ClientWindows::managed() {
    const auto list = propertyReply(m_connection, requestWindowList(m_connection, Atom::NetClientList));
    const auto windows = values(list);
    return {windows.begin(), windows.end()};
}

std::vector<xcb_window_t> ClientWindows::windowsOf(ProcessId pid) {
    std::vector<xcb_window_t> windows = frontToBack();
    learnPids(windows);
    std::erase_if(windows, [&](xcb_window_t window) { return m_pids[window] != pid; });
    return windows;
}

/// Reads the process ids that are not cached, all in one round trip.
void ClientWindows::learnPids(const std::vector<xcb_window_t>& windows) {
    std::vector<std::pair<xcb_window_t, PidRequest>> requests;
    for (const xcb_window_t window : windows) {
        if (!m_pids.contains(window))
            requests.emplace_back(window, PidRequest(m_connection, window));
    }
    for (auto& [window, request] : requests)
        m_pids[window] = request.collect();
}

/// Reads everything that is not cached about one window, in one round trip.
const ClientWindows::Known& ClientWindows::learn(xcb_window_t window) {
    startTurn();
    return Questions(*this, window).collect();
}

void ClientWindows::learnAll(const std::vector<xcb_window_t>& windows) {
    startTurn();
    std::vector<Questions> all;
    all.reserve(windows.size());
    for (const xcb_window_t window : windows)
        all.emplace_back(*this, window);
    for (Questions& questions : all)
        questions.collect();
}

std::optional<ProcessId> ClientWindows::pid(xcb_window_t window) {
    learn(window);
    return m_pids[window];
}

std::optional<WindowFrame> ClientWindows::frame(xcb_window_t window) {
    return *learn(window).frame;
}

std::optional<Size> ClientWindows::frameWindowSize(xcb_window_t window) {
    const auto frame = frameWindowOf(m_connection, window);
    return frame ? std::optional(frame->size()) : std::nullopt;
}

WindowTraits ClientWindows::traits(xcb_window_t window) {
    return *learn(window).traits;
}

void ClientWindows::forgetFrame(xcb_window_t window) {
    m_known[window].frame.reset();
}

} // namespace tessarel::x11
