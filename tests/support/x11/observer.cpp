// SPDX-License-Identifier: MIT

#include "support/x11/observer.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <poll.h>

namespace tessarel::x11test {

namespace {

/// How often to check conditions for which there is no event, such as the exit of a process or a grab.
constexpr std::chrono::milliseconds kLookAgain{10};
constexpr std::chrono::milliseconds kAskAgain{500};

constexpr std::uint32_t kSourcePager = 2;
constexpr std::uint32_t kNorthWest = 1;
constexpr std::uint32_t kAllFour = 0b1111U << 8U;

} // namespace

Observer::Observer(const std::string& display) : m_x(display), m_barrier(xcb_generate_id(m_x.get())) {
    xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_barrier, root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    watch(m_barrier);
    // Replies to pings arrive as client messages to the root window, which need structure events.
    const std::uint32_t mask =
        XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_x.get(), root(), XCB_CW_EVENT_MASK, &mask);
    m_x.roundTrip();
}

void Observer::watch(xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_x.get(), window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(m_x.get());
}

bool Observer::waitUntil(const std::function<bool()>& holds, const Deadline& deadline) {
    while (!holds()) {
        if (deadline.passed() || xcb_connection_has_error(m_x.get()) != 0)
            return false;
        drainEvents(deadline);
    }
    return true;
}

void Observer::drainEvents(const Deadline& deadline) {
    xcb_flush(m_x.get());
    auto event = own(xcb_poll_for_event(m_x.get()));
    if (!event) {
        pollfd poll{.fd = xcb_get_file_descriptor(m_x.get()), .events = POLLIN, .revents = 0};
        const bool isQuiet = ::poll(&poll, 1, deadline.remaining(kLookAgain)) == 0;
        if (isQuiet && windowManagerName() == "pekwm") // it sometimes leaves events unread until the next one
            sendToRoot(root(), "_TESSAREL_TEST_WAKE", {});
        event = own(xcb_poll_for_event(m_x.get()));
    }
    for (; event; event = own(xcb_poll_for_queued_event(m_x.get()))) {
        m_barrierAnswered = m_barrierAnswered || isBarrierAnswer(*event);
        m_pingAnswered = m_pingAnswered || isPingAnswer(*event);
    }
}

bool Observer::isBarrierAnswer(const xcb_generic_event_t& event) const {
    if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY)
        return false;
    const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    return configure.window == m_barrier && m_barrierPlaces.contains(configure.x);
}

bool Observer::settle(const Deadline& deadline) {
    // A window manager must pass on the ConfigureRequest of an unmapped window, and does so after all earlier
    // requests. One that has just started may lose the first request; a slow one may reply to it after the
    // next.
    m_barrierPlaces.clear();
    m_barrierAnswered = false;
    while (!deadline.passed()) {
        m_barrierX = static_cast<std::int16_t>(m_barrierX > -1000 ? m_barrierX - 1 : -1);
        m_barrierPlaces.insert(m_barrierX);
        const std::uint32_t x = static_cast<std::uint32_t>(std::int32_t{m_barrierX});
        xcb_configure_window(m_x.get(), m_barrier, XCB_CONFIG_WINDOW_X, &x);
        const Deadline beforeNext(std::chrono::milliseconds(deadline.remaining(kAskAgain)));
        if (waitUntil([this] { return m_barrierAnswered; }, beforeNext))
            return true;
    }
    return false;
}

bool Observer::isPingAnswer(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_CLIENT_MESSAGE)
        return false;
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    return message.window == root() && message.data.data32[0] == m_x.atom("_NET_WM_PING") &&
           message.data.data32[1] == m_ping;
}

bool Observer::settleProgram(xcb_window_t window, const Deadline& deadline) {
    xcb_client_message_event_t ping{};
    ping.response_type = XCB_CLIENT_MESSAGE;
    ping.format = 32;
    ping.window = window;
    ping.type = m_x.atom("WM_PROTOCOLS");
    ping.data.data32[0] = m_x.atom("_NET_WM_PING");
    ping.data.data32[1] = ++m_ping;
    ping.data.data32[2] = window;
    m_pingAnswered = false;
    xcb_send_event(m_x.get(), 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&ping));
    return waitUntil([this] { return m_pingAnswered; }, deadline) && settle(deadline);
}

std::optional<Frame> Observer::clientFrame(xcb_window_t window) {
    const auto geometryCookie = xcb_get_geometry(m_x.get(), window);
    const auto originCookie = xcb_translate_coordinates(m_x.get(), window, root(), 0, 0);
    const auto geometry = own(xcb_get_geometry_reply(m_x.get(), geometryCookie, nullptr));
    const auto origin = own(xcb_translate_coordinates_reply(m_x.get(), originCookie, nullptr));
    if (!geometry || !origin)
        return std::nullopt;
    return Frame{origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

std::optional<Extents> Observer::extents(xcb_window_t window, std::string_view property) {
    const std::vector<std::uint32_t> found = values(window, property);
    if (found.size() != 4)
        return std::nullopt;
    const auto pixels = [&found](std::size_t index) { return static_cast<int>(found[index]); };
    return Extents{pixels(0), pixels(1), pixels(2), pixels(3)};
}

bool Observer::isUnderPointer(xcb_window_t window) {
    const auto pointer =
        own(xcb_query_pointer_reply(m_x.get(), xcb_query_pointer(m_x.get(), root()), nullptr));
    while (pointer && window != XCB_WINDOW_NONE && window != pointer->child) {
        const auto tree = own(xcb_query_tree_reply(m_x.get(), xcb_query_tree(m_x.get(), window), nullptr));
        if (!tree)
            return false;
        window = tree->parent;
    }
    return pointer && window != XCB_WINDOW_NONE;
}

std::optional<Frame> Observer::outerFrame(xcb_window_t window) {
    const std::optional<Frame> client = clientFrame(window);
    if (!client)
        return std::nullopt;
    const Extents frame = decoration(window);
    const Extents shadow = extents(window, "_GTK_FRAME_EXTENTS").value_or(Extents{});
    const Extents border{frame.left - shadow.left, frame.right - shadow.right, frame.top - shadow.top,
                         frame.bottom - shadow.bottom};
    return Frame{client->x - border.left, client->y - border.top, client->width + border.left + border.right,
                 client->height + border.top + border.bottom};
}

Extents Observer::decoration(xcb_window_t window) {
    if (const auto published = extents(window, "_NET_FRAME_EXTENTS"))
        return *published;
    const auto client = clientFrame(window);
    const auto outer = topLevelFrame(window);
    if (!client || !outer || windowManagerName().empty() || supports("_NET_FRAME_EXTENTS"))
        return {};
    const int left = client->x - outer->x;
    const int bottom = outer->bottom() - client->bottom();
    return {left, outer->right() - client->right(), client->y - outer->y,
            bottom < 0 ? left : bottom}; // the frame of a shaded window ends above its client
}

xcb_window_t Observer::topLevel(xcb_window_t window) {
    xcb_connection_t* const x = m_x.get();
    auto tree = own(xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
    while (tree && tree->parent != tree->root && tree->parent != XCB_WINDOW_NONE) {
        window = tree->parent;
        tree = own(xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
    }
    return window;
}

std::optional<Frame> Observer::topLevelFrame(xcb_window_t window) {
    xcb_connection_t* const x = m_x.get();
    const auto geometry = own(xcb_get_geometry_reply(x, xcb_get_geometry(x, topLevel(window)), nullptr));
    if (!geometry)
        return std::nullopt;
    const int borders = 2 * geometry->border_width;
    return Frame{geometry->x, geometry->y, geometry->width + borders, geometry->height + borders};
}

Owned<xcb_get_property_reply_t> Observer::property(xcb_window_t window, std::string_view name,
                                                   std::uint32_t maximum) {
    const auto cookie =
        xcb_get_property(m_x.get(), 0, window, m_x.atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, maximum);
    return own(xcb_get_property_reply(m_x.get(), cookie, nullptr));
}

std::vector<std::uint32_t> Observer::values(xcb_window_t window, std::string_view name) {
    const auto reply = property(window, name, 4096);
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::string Observer::text(xcb_window_t window, std::string_view name) {
    const auto reply = property(window, name, 4096);
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

xcb_window_t Observer::activeWindow() {
    const std::vector<std::uint32_t> found = values(root(), "_NET_ACTIVE_WINDOW");
    return found.empty() ? xcb_window_t{XCB_WINDOW_NONE} : found.front();
}

std::vector<xcb_window_t> Observer::clients() {
    return values(root(), "_NET_CLIENT_LIST");
}

bool Observer::managed(xcb_window_t window) {
    const std::vector<xcb_window_t> all = clients();
    const bool isListed = std::find(all.begin(), all.end(), window) != all.end();
    // pekwm lists a window only when the next one has opened.
    return isListed || (windowManagerName() == "pekwm" && !values(window, "WM_STATE").empty());
}

xcb_window_t Observer::windowOfClass(std::string_view className) {
    const std::string ending = '\0' + std::string(className) + '\0';
    std::vector<xcb_window_t> windows = clients();
    windows.push_back(activeWindow());
    const auto found = std::ranges::find_if(
        windows, [&](xcb_window_t window) { return text(window, "WM_CLASS").ends_with(ending); });
    return found == windows.end() ? xcb_window_t{XCB_WINDOW_NONE} : *found;
}

bool Observer::hasTakenCharge(xcb_window_t window) {
    return managed(window) && !values(window, "WM_STATE").empty();
}

std::set<std::string> Observer::states(xcb_window_t window) {
    std::set<std::string> names;
    for (const xcb_atom_t state : values(window, "_NET_WM_STATE"))
        names.insert(m_x.atomName(state));
    return names;
}

bool Observer::hasState(xcb_window_t window, std::string_view state) {
    const std::vector<std::uint32_t> all = values(window, "_NET_WM_STATE");
    return std::find(all.begin(), all.end(), m_x.atom(state)) != all.end();
}

std::optional<Frame> Observer::workArea() {
    const std::vector<std::uint32_t> areas = values(root(), "_NET_WORKAREA");
    const std::vector<std::uint32_t> desktop = values(root(), "_NET_CURRENT_DESKTOP");
    const std::size_t first = desktop.empty() ? 0 : 4 * std::size_t{desktop.front()};
    // Window Maker, which does not name itself, leaves panels out of its area.
    if (areas.empty() || windowManagerName() == "nameless")
        return areaWithoutStruts();
    if (areas.size() < first + 4)
        return std::nullopt;
    const auto pixels = [&areas, first](std::size_t index) { return static_cast<int>(areas[first + index]); };
    return Frame{pixels(0), pixels(1), pixels(2), pixels(3)};
}

Frame Observer::areaWithoutStruts() {
    xcb_connection_t* const x = m_x.get();
    const auto screen = own(xcb_get_geometry_reply(x, xcb_get_geometry(x, root()), nullptr));
    const auto tree = own(xcb_query_tree_reply(x, xcb_query_tree(x, root()), nullptr));
    if (!screen || !tree)
        return {};
    std::vector<xcb_window_t> windows = clients();
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    windows.insert(windows.end(), children, children + xcb_query_tree_children_length(tree.get()));
    std::array<int, 4> depths{}; // left, right, top, bottom
    for (const xcb_window_t window : windows) {
        const std::vector<std::uint32_t> strut = values(window, "_NET_WM_STRUT_PARTIAL");
        for (std::size_t side = 0; side < depths.size() && side < strut.size(); ++side)
            depths[side] = std::max(depths[side], static_cast<int>(strut[side]));
    }
    return {depths[0], depths[2], screen->width - depths[0] - depths[1],
            screen->height - depths[2] - depths[3]};
}

bool Observer::supports(std::string_view hint) {
    const std::vector<std::uint32_t> all = values(root(), "_NET_SUPPORTED");
    return std::find(all.begin(), all.end(), m_x.atom(hint)) != all.end();
}

std::string Observer::windowManagerName() {
    const std::vector<std::uint32_t> check = values(root(), "_NET_SUPPORTING_WM_CHECK");
    if (check.empty() || values(check.front(), "_NET_SUPPORTING_WM_CHECK") != check)
        return {};
    const std::string name = text(check.front(), "_NET_WM_NAME");
    return name.empty() ? "nameless" : name;
}

xcb_window_t Observer::selectionOwner(std::string_view selection) {
    const auto reply = own(xcb_get_selection_owner_reply(
        m_x.get(), xcb_get_selection_owner(m_x.get(), m_x.atom(selection)), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

void Observer::activate(xcb_window_t window) {
    sendToRoot(window, "_NET_ACTIVE_WINDOW", {kSourcePager, XCB_CURRENT_TIME, 0, 0, 0});
}

bool Observer::activateAndWait(xcb_window_t window) {
    activate(window);
    // pekwm may still be about to focus the window that opened last, and then does so afterwards. jwm has
    // dropped a request while another client was stopped. awesome does not carry out one in 200 under load.
    const std::string manager = windowManagerName();
    const bool mayRevert = manager == "pekwm" || manager == "JWM" || manager == "awesome";
    return waitUntil([&] {
        const bool isActive = activeWindow() == window;
        if (!isActive && mayRevert)
            activate(window);
        return isActive;
    });
}

void Observer::changeState(xcb_window_t window, StateChange change, std::string_view first,
                           std::string_view second) {
    const xcb_atom_t secondAtom = second.empty() ? xcb_atom_t{XCB_ATOM_NONE} : m_x.atom(second);
    sendToRoot(window, "_NET_WM_STATE",
               {static_cast<std::uint32_t>(change), m_x.atom(first), secondAtom, kSourcePager, 0});
}

void Observer::iconify(xcb_window_t window) {
    constexpr std::uint32_t kIconicState = 3;
    sendToRoot(window, "WM_CHANGE_STATE", {kIconicState, 0, 0, 0, 0});
}

void Observer::moveOuterFrame(xcb_window_t window, const Frame& frame) {
    const Extents border = decoration(window);
    const auto value = [](int pixels) { return static_cast<std::uint32_t>(pixels); };
    if (!supports("_NET_MOVERESIZE_WINDOW")) {
        const std::array<std::uint32_t, 4> values{value(frame.x), value(frame.y),
                                                  value(frame.width - border.left - border.right),
                                                  value(frame.height - border.top - border.bottom)};
        xcb_configure_window(m_x.get(), window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values.data());
        m_x.roundTrip();
        return;
    }
    sendToRoot(window, "_NET_MOVERESIZE_WINDOW",
               {kNorthWest | kAllFour | kSourcePager << 12U, value(frame.x), value(frame.y),
                value(frame.width - border.left - border.right),
                value(frame.height - border.top - border.bottom)});
}

void Observer::sendToRoot(xcb_window_t window, std::string_view type, std::array<std::uint32_t, 5> data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = m_x.atom(type);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(m_x.get(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(m_x.get());
}

} // namespace tessarel::x11test
