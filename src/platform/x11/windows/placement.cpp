#include "platform/x11/windows/placement.h"

#include "platform/x11/windows/size_hints.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace tessarel::x11 {

namespace {

constexpr std::uint32_t kNorthWest = 1;
constexpr std::uint32_t kHasOrigin = 1U << 8 | 1U << 9;
constexpr std::uint32_t kHasSize = 1U << 10 | 1U << 11;
constexpr std::uint32_t kFromUser = 2; // as a pager speaks
constexpr std::uint32_t kFromUserShifted = kFromUser << 12;
constexpr double kObeyed = 3; // pixels: a difference up to this is not a refusal

enum class StateChange : std::uint32_t { Remove = 0, Add = 1 };

/// Coordinates travel as the two's complement of their 32 bits.
std::uint32_t wire(double value) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::round(value)));
}

void sendToManager(Connection& connection, xcb_window_t window, Atom type,
                   const std::array<std::uint32_t, 5>& data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection.atom(type);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(connection.xcb(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

void changeStates(Connection& connection, xcb_window_t window, StateChange change, xcb_atom_t first,
                  xcb_atom_t second) {
    sendToManager(connection, window, Atom::NetWmState,
                  {static_cast<std::uint32_t>(change), first, second, kFromUser, 0});
}

bool isFar(double actual, double wished) {
    return std::abs(actual - wished) > kObeyed;
}

/// The client's window in a frame of that size.
Size clientSize(const Size& outer, const Extents& extents) {
    return {std::max(outer.width - extents.left - extents.right, 1.0), // no window is empty
            std::max(outer.height - extents.top - extents.bottom, 1.0)};
}

} // namespace

Placement::Placement(Connection& connection, ClientWindows& windows)
    : m_connection(connection), m_windows(windows), m_barrier(connection), m_manager(connection) {}

bool Placement::place(xcb_window_t window, FrameWish wish) {
    const auto before = m_windows.frame(window);
    if (!before)
        return true;
    // A manager was seen to make windows higher that were only to be moved.
    if (!wish.size && before->states == WindowStates{})
        wish.size = before->outer().size();
    normalize(window, before->states);
    bool settled = ask(window, wish, before->extents);
    auto after = readBack(window);
    if (settled && after && after->extents != before->extents) {
        settled = ask(window, wish, after->extents);
        after = readBack(window);
    }
    if (settled && after && isHeldFrom(window, *after, wish))
        settled = insist(window, wish, before->outer(), *after);
    return settled;
}

bool Placement::insist(xcb_window_t window, const FrameWish& wish, const Rect& before,
                       const WindowFrame& after) {
    if (before != after.outer()) {
        // A busy manager may tile a window that has just been dropped, after the frame before was read and
        // before it sees the wish.
        const bool settled = ask(window, wish, after.extents);
        const auto again = readBack(window);
        if (!settled || !again || again->outer() != after.outer())
            return settled;
    }
    releaseFromTile(window);
    const bool settled = ask(window, wish, after.extents);
    m_windows.forgetFrame(window);
    return settled;
}

bool Placement::ask(xcb_window_t window, const FrameWish& wish, const Extents& extents) {
    if (m_manager.state().suffices())
        askManager(window, wish, extents);
    else
        askServer(window, wish, extents);
    return m_barrier.wait();
}

void Placement::askManager(xcb_window_t window, const FrameWish& wish, const Extents& extents) {
    // The corner asked for is that of the manager's frame, which shadows reach beyond.
    const int shadowLeft = std::min(extents.left, 0);
    const int shadowTop = std::min(extents.top, 0);
    std::array<std::uint32_t, 5> data{kNorthWest | kFromUserShifted};
    if (wish.origin) {
        data[0] |= kHasOrigin;
        data[1] = wire(wish.origin->x + shadowLeft);
        data[2] = wire(wish.origin->y + shadowTop);
    }
    if (wish.size) {
        data[0] |= kHasSize;
        const Size client = clientSize(*wish.size, extents);
        data[3] = wire(client.width);
        data[4] = wire(client.height);
    }
    sendToManager(m_connection, window, Atom::NetMoveResizeWindow, data);
}

/// For a display without a manager, where nothing stands between us and the window.
void Placement::askServer(xcb_window_t window, const FrameWish& wish, const Extents& extents) {
    std::uint16_t mask = 0;
    std::array<std::uint32_t, 4> list{};
    std::size_t count = 0;
    if (wish.origin) {
        mask |= XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
        list[count++] = wire(wish.origin->x + extents.left);
        list[count++] = wire(wish.origin->y + extents.top);
    }
    if (wish.size) {
        mask |= XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
        const Size client = clientSize(*wish.size, extents);
        list[count++] = wire(client.width);
        list[count++] = wire(client.height);
    }
    xcb_configure_window(m_connection.xcb(), window, mask, list.data());
}

void Placement::normalize(xcb_window_t window, const WindowStates& states) {
    if (states.maximizedHorizontally || states.maximizedVertically)
        changeStates(m_connection, window, StateChange::Remove,
                     m_connection.atom(Atom::NetWmStateMaximizedHorz),
                     m_connection.atom(Atom::NetWmStateMaximizedVert));
    if (states.shaded)
        changeStates(m_connection, window, StateChange::Remove, m_connection.atom(Atom::NetWmStateShaded), 0);
}

/// Whether a window is elsewhere than wished, or of another size and not for its client's sake.
bool Placement::isHeldFrom(xcb_window_t window, const WindowFrame& frame, const FrameWish& wish) {
    if (!wish.origin)
        return false;
    const Rect outer = frame.outer();
    if (isFar(outer.x, wish.origin->x) || isFar(outer.y, wish.origin->y))
        return true;
    if (!wish.size || (!isFar(outer.width, wish.size->width) && !isFar(outer.height, wish.size->height)))
        return false;
    return !readSizeHints(m_connection, window)
                .explain(frame.client.size(), clientSize(*wish.size, frame.extents));
}

/// Some managers hold on to a window that they have tiled and tell nobody; one maximised in between is free.
void Placement::releaseFromTile(xcb_window_t window) {
    for (const StateChange change : {StateChange::Add, StateChange::Remove})
        changeStates(m_connection, window, change, m_connection.atom(Atom::NetWmStateMaximizedHorz),
                     m_connection.atom(Atom::NetWmStateMaximizedVert));
}

std::optional<WindowFrame> Placement::readBack(xcb_window_t window) {
    m_windows.forgetFrame(window);
    return m_windows.frame(window);
}

} // namespace tessarel::x11
