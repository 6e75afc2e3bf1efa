#include "platform/x11/windows/client_windows.h"

#include "platform/x11/server/property.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace tessarel::x11 {

namespace {

constexpr std::uint32_t kMostActiveWindows = 16; // there is one, but some managers add an empty second

xcb_get_property_cookie_t requestActiveWindow(Connection& connection) {
    return requestProperty(connection, connection.root(), connection.atom(Atom::NetActiveWindow),
                           XCB_ATOM_WINDOW, kMostActiveWindows);
}

xcb_window_t activeWindowIn(const PropertyReply& reply) {
    const auto active = values(reply);
    return active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active.front();
}

/// The question which windows are managed, sent and not answered yet. Collected once.
class ListRequest {
public:
    explicit ListRequest(Connection& connection)
        : m_connection(connection), m_stacking(requestWindowList(connection, Atom::NetClientListStacking)),
          m_list(requestWindowList(connection, Atom::NetClientList)) {}

    /// The front-most first.
    [[nodiscard]] std::vector<xcb_window_t> collect() {
        const auto stacking = propertyReply(m_connection, m_stacking);
        const auto list = propertyReply(m_connection, m_list);
        // Both, for a manager may leave the first one out while there is a single window.
        std::vector<xcb_window_t> windows;
        std::unordered_set<xcb_window_t> seen{XCB_WINDOW_NONE};
        for (const auto bottomToTop : {values(stacking), values(list)}) {
            std::copy_if(bottomToTop.rbegin(), bottomToTop.rend(), std::back_inserter(windows),
                         [&](xcb_window_t window) { return seen.insert(window).second; });
        }
        return windows;
    }

private:
    Connection& m_connection;
    xcb_get_property_cookie_t m_stacking;
    xcb_get_property_cookie_t m_list;
};

} // namespace

/// What is not known about a window yet, asked in one go.
class ClientWindows::Questions {
public:
    Questions(ClientWindows& windows, xcb_window_t window) : m_windows(windows), m_window(window) {
        const Known& known = windows.m_known[window];
        if (!known.frame)
            m_frame.emplace(windows.m_connection, window);
        if (!known.traits)
            m_traits.emplace(windows.m_connection, window);
        if (!windows.m_pids.contains(window))
            m_pid.emplace(windows.m_connection, window);
    }

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
    : m_connection(connection),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })),
      m_handler(connection.onEvent([this](const Connection::Event& event) { follow(event); })) {
    connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

/// The number of a window that has gone may come back as another program's.
void ClientWindows::note(const Connection::Event& event) {
    if (changedProperty(event, m_connection.root()) == m_connection.atom(Atom::NetClientList))
        m_pidsOutdated = true;
}

/// Keeps the guess about the active window right, so that a key press finds it right.
void ClientWindows::follow(const Connection::Event& event) {
    if (changedProperty(event, m_connection.root()) == m_connection.atom(Atom::NetActiveWindow)) {
        const auto active = propertyReply(m_connection, requestActiveWindow(m_connection));
        m_lastActive = activeWindowIn(active);
    }
}

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

/// A manager may go on naming a window that has closed, whose number may be another one's by now.
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
    const bool isManaged = std::ranges::find(*m_frontToBack, m_lastActive) != m_frontToBack->end();
    m_active = isManaged ? m_lastActive : xcb_window_t{XCB_WINDOW_NONE};
    return *m_active;
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

void ClientWindows::learnPids(const std::vector<xcb_window_t>& windows) {
    std::vector<std::pair<xcb_window_t, PidRequest>> requests;
    for (const xcb_window_t window : windows) {
        if (!m_pids.contains(window))
            requests.emplace_back(window, PidRequest(m_connection, window));
    }
    for (auto& [window, request] : requests)
        m_pids[window] = request.collect();
}

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

WindowTraits ClientWindows::traits(xcb_window_t window) {
    return *learn(window).traits;
}

void ClientWindows::forgetFrame(xcb_window_t window) {
    m_known[window].frame.reset();
}

} // namespace tessarel::x11
