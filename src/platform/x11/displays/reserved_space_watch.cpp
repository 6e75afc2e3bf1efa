// SPDX-License-Identifier: MIT

#include "platform/x11/displays/reserved_space_watch.h"

#include "platform/x11/server/event.h"
#include "platform/x11/server/property.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

namespace tessarel::x11 {

namespace {

// Upper bounds for what a property may hold; longer values are ignored.
constexpr std::uint32_t kMostTypes = 64;
constexpr std::uint32_t kMostDesktops = 64;
constexpr std::uint32_t kMostMonitors = 64;

/// Requests a property of type CARDINAL.
xcb_get_property_cookie_t requestNumbers(Connection& connection, xcb_window_t window, xcb_atom_t property,
                                         std::uint32_t maximum) {
    return requestProperty(connection, window, property, XCB_ATOM_CARDINAL, maximum);
}

} // namespace

/// The pending requests for the struts of one window.
///
/// For a managed window, PropertyNotify is selected before the properties are read, so that no change is
/// missed in between. It is deselected for windows that turn out not to be panels: their properties change
/// often, and each event would wake the program. For other windows it is selected only for panels.
class ReservedSpaceWatch::StrutRequest {
public:
    StrutRequest(Connection& connection, xcb_window_t window, bool isManaged)
        : m_connection(&connection), m_window(window), m_isManaged(isManaged) {
        if (isManaged)
            connection.selectEvents(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
        m_partial = requestNumbers(connection, window, connection.atom(Atom::NetWmStrutPartial), 12);
        m_whole = requestNumbers(connection, window, connection.atom(Atom::NetWmStrut), 4);
        m_type = requestProperty(connection, window, connection.atom(Atom::NetWmWindowType), XCB_ATOM_ATOM,
                                 kMostTypes);
    }

    [[nodiscard]] xcb_window_t window() const { return m_window; }

    /// Waits for the replies and returns the struts. Must be called once. `_NET_WM_STRUT_PARTIAL` wins over
    /// `_NET_WM_STRUT`, as EWMH specifies. Docks stay watched even without struts, because they may set them
    /// later.
    [[nodiscard]] std::vector<Strut> collect() {
        const auto partial = propertyReply(*m_connection, m_partial);
        const auto whole = propertyReply(*m_connection, m_whole);
        const auto type = propertyReply(*m_connection, m_type);
        const bool hasPartial = values(partial).size() == 12;
        std::vector<Strut> struts = strutsFrom(values(hasPartial ? partial : whole));
        const auto types = values(type);
        const bool isDock = std::find(types.begin(), types.end(),
                                      m_connection->atom(Atom::NetWmWindowTypeDock)) != types.end();
        if (!m_isManaged && !isDock)
            struts.clear();
        const bool isPanel = isDock || !struts.empty();
        if (!isPanel)
            m_connection->deselectEvents(m_window, XCB_EVENT_MASK_PROPERTY_CHANGE);
        else if (!m_isManaged)
            m_connection->selectEvents(m_window, XCB_EVENT_MASK_PROPERTY_CHANGE);
        return struts;
    }

private:
    Connection* m_connection;
    xcb_window_t m_window;
    bool m_isManaged;
    xcb_get_property_cookie_t m_partial{};
    xcb_get_property_cookie_t m_whole{};
    xcb_get_property_cookie_t m_type{};
};

/// The pending requests for the work areas that the window manager publishes: `_GTK_WORKAREAS_D<n>`, with one
/// rectangle per monitor, and `_NET_WORKAREA`, with one rectangle per desktop for all monitors together.
class ReservedSpaceWatch::ManagersAreasRequest {
public:
    ManagersAreasRequest(Connection& connection, xcb_atom_t areasOfDesktop)
        : m_connection(connection), m_perMonitor(requestNumbers(connection, connection.root(), areasOfDesktop,
                                                                kValuesPerRectangle * kMostMonitors)),
          m_perDesktop(requestNumbers(connection, connection.root(), connection.atom(Atom::NetWorkarea),
                                      kValuesPerRectangle * kMostDesktops)) {}

    /// Waits for the replies and stores the areas of `desktop` in `space`.
    void collect(std::uint32_t desktop, ReservedSpace& space) const {
        const auto perMonitor = propertyReply(m_connection, m_perMonitor);
        const auto perDesktop = propertyReply(m_connection, m_perDesktop);
        space.areaPerMonitor = rectanglesFrom(values(perMonitor));
        const std::vector<Rect> commonAreas = rectanglesFrom(values(perDesktop));
        space.commonArea.reset();
        if (desktop < commonAreas.size())
            space.commonArea = commonAreas[desktop];
    }

private:
    Connection& m_connection;
    xcb_get_property_cookie_t m_perMonitor;
    xcb_get_property_cookie_t m_perDesktop;
};

ReservedSpaceWatch::ReservedSpaceWatch(Connection& connection)
    : m_connection(connection),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })),
      m_handler(connection.onEvent([this](const Connection::Event&) { follow(); })) {
    connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

const ReservedSpace& ReservedSpaceWatch::current() {
    m_isWanted = true;
    if (!m_isCurrent)
        refresh();
    return m_space;
}

/// Refreshes the cache right after a change, so that the next key press does not wait for it. Before the
/// first use there is nothing to keep current.
void ReservedSpaceWatch::follow() {
    if (m_isWanted && !m_isCurrent)
        refresh();
}

/// Invalidates the cache as soon as an event is read that concerns it.
void ReservedSpaceWatch::note(const Connection::Event& event) {
    if (eventType(event) != XCB_PROPERTY_NOTIFY)
        return;
    const auto& change = eventAs<xcb_property_notify_event_t>(event);
    if (change.window == m_connection.root()) {
        noteRoot(change.atom);
    } else if (change.atom == m_connection.atom(Atom::NetWmStrut) ||
               change.atom == m_connection.atom(Atom::NetWmStrutPartial)) {
        m_strutsOutdated = true;
        m_isCurrent = false;
    }
}

void ReservedSpaceWatch::noteRoot(xcb_atom_t property) {
    const bool isWorkarea = property == m_connection.atom(Atom::NetWorkarea);
    const bool isAreas = std::any_of(m_areasAtoms.begin(), m_areasAtoms.end(),
                                     [&](const auto& known) { return known.second == property; });
    if (isWorkarea) // a window that is not watched here may have set a strut
        m_strutsOutdated = true;
    if (isWorkarea || isAreas || property == m_connection.atom(Atom::NetClientList) ||
        property == m_connection.atom(Atom::NetCurrentDesktop))
        m_isCurrent = false;
}

void ReservedSpaceWatch::refresh() {
    m_isCurrent = true; // set first, so that an event read along with the replies can reset it
    if (std::exchange(m_strutsOutdated, false)) {
        dropAllBut({}, m_struts);
        dropAllBut({}, m_otherStruts);
    }
    const auto clientsCookie = requestWindowList(m_connection, Atom::NetClientList);
    const auto desktopCookie =
        requestNumbers(m_connection, m_connection.root(), m_connection.atom(Atom::NetCurrentDesktop), 1);
    // Reads the areas of the last known desktop in the same round trip; usually it is still the current one.
    const ManagersAreasRequest areasOfLast(m_connection, areasAtom(m_desktop));
    const auto clients = propertyReply(m_connection, clientsCookie);
    const auto desktop = propertyReply(m_connection, desktopCookie);
    areasOfLast.collect(m_desktop, m_space);

    const std::uint32_t last = std::exchange(m_desktop, value(desktop).value_or(0));
    if (m_desktop != last)
        ManagersAreasRequest(m_connection, areasAtom(m_desktop)).collect(m_desktop, m_space);
    const auto managed = values(clients);
    const bool publishesAreas = m_space.commonArea || !m_space.areaPerMonitor.empty();
    const auto others = publishesAreas ? std::vector<xcb_window_t>{} : unmanagedWindows(managed);
    // Both before the first read, because a window may have moved from one cache to the other.
    dropAllBut(managed, m_struts);
    dropAllBut(others, m_otherStruts);
    m_space.struts.clear();
    readStruts(m_struts, managed, Managed::Yes);
    readStruts(m_otherStruts, others, Managed::No);
}

/// Returns the windows of other programs that may be docks without being managed: the children of the root
/// window, and their children, because i3 keeps docks in frames and does not list them.
std::vector<xcb_window_t> ReservedSpaceWatch::unmanagedWindows(std::span<const xcb_window_t> managed) {
    const xcb_window_t root = m_connection.root();
    std::vector<xcb_window_t> windows = childrenOf({&root, 1});
    const std::vector<xcb_window_t> framed = childrenOf(windows);
    windows.insert(windows.end(), framed.begin(), framed.end());
    const std::unordered_set<xcb_window_t> known(managed.begin(), managed.end());
    std::erase_if(windows,
                  [&](xcb_window_t window) { return known.contains(window) || m_connection.owns(window); });
    return windows;
}

/// Returns the children of all `parents`, read in one round trip.
std::vector<xcb_window_t> ReservedSpaceWatch::childrenOf(std::span<const xcb_window_t> parents) {
    std::vector<xcb_query_tree_cookie_t> cookies;
    cookies.reserve(parents.size());
    for (const xcb_window_t parent : parents)
        cookies.push_back(xcb_query_tree(m_connection.xcb(), parent));
    std::vector<xcb_window_t> children;
    for (const xcb_query_tree_cookie_t cookie : cookies) {
        const auto tree = m_connection.reply<xcb_query_tree_reply>(cookie);
        if (!tree)
            continue;
        const xcb_window_t* const first = xcb_query_tree_children(tree.get());
        children.insert(children.end(), first, first + xcb_query_tree_children_length(tree.get()));
    }
    return children;
}

/// Drops the windows that are not in `windows` from the cache and stops watching them.
void ReservedSpaceWatch::dropAllBut(std::span<const xcb_window_t> windows, StrutCache& cache) {
    const std::unordered_set<xcb_window_t> kept(windows.begin(), windows.end());
    std::erase_if(cache, [&](const auto& entry) {
        const bool isGone = !kept.contains(entry.first);
        if (isGone)
            m_connection.deselectEvents(entry.first, XCB_EVENT_MASK_PROPERTY_CHANGE);
        return isGone;
    });
}

/// Adds the struts of `windows`. Reads only windows that are not in `cache`.
void ReservedSpaceWatch::readStruts(StrutCache& cache, std::span<const xcb_window_t> windows,
                                    Managed managed) {
    StrutCache struts;
    std::vector<StrutRequest> requests;
    for (const xcb_window_t window : windows) {
        if (auto known = cache.find(window); known != cache.end())
            struts.insert(cache.extract(known));
        else
            requests.emplace_back(m_connection, window, managed == Managed::Yes);
    }
    for (StrutRequest& request : requests)
        struts[request.window()] = request.collect();
    cache = std::move(struts);
    for (const xcb_window_t window : windows)
        m_space.struts.insert(m_space.struts.end(), cache[window].begin(), cache[window].end());
}

/// Returns the atom of `_GTK_WORKAREAS_D<desktop>`, or XCB_ATOM_NONE for an implausible desktop number: atoms
/// stay in the server until it resets, so bogus numbers must not create any. The first call for a desktop
/// takes a round trip.
xcb_atom_t ReservedSpaceWatch::areasAtom(std::uint32_t desktop) {
    if (desktop >= kMostDesktops)
        return XCB_ATOM_NONE;
    const auto known = m_areasAtoms.find(desktop);
    if (known != m_areasAtoms.end())
        return known->second;
    return m_areasAtoms[desktop] = m_connection.internAtom("_GTK_WORKAREAS_D" + std::to_string(desktop));
}

} // namespace tessarel::x11
