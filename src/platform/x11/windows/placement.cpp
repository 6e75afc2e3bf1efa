#include "platform/x11/windows/placement.h"

#include "platform/x11/windows/size_hints.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace tessarel::x11 {

namespace {

// Fields of _NET_MOVERESIZE_WINDOW.
//
// With gravity NorthWest, x and y are the corner of the frame in all tested window managers. Gravity 0 (the
// window's own) would be off by the frame extents for windows with win_gravity Static, such as those of Qt.
constexpr std::uint32_t kNorthWest = 1;
constexpr std::uint32_t kHasOrigin = 1U << 8 | 1U << 9;
constexpr std::uint32_t kHasSize = 1U << 10 | 1U << 11;
constexpr std::uint32_t kFromUser = 2; // source indication of pagers and other direct user actions
constexpr std::uint32_t kFromUserShifted = kFromUser << 12;

/// In pixels. A difference up to this does not count as a refusal by the window manager.
constexpr double kObeyed = 3;

/// The actions of a _NET_WM_STATE client message.
enum class StateChange : std::uint32_t { Remove = 0, Add = 1 };

/// Rounds to a whole pixel and encodes it for the protocol: negative values as 32-bit two's complement.
std::uint32_t wire(double value) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::round(value)));
}

/// Sends a client message about `window` to the root window, as EWMH prescribes for requests to the window
/// manager.
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

/// Adds or removes two states at once; pass 0 as `second` for a single one.
void changeStates(Connection& connection, xcb_window_t window, StateChange change, xcb_atom_t first,
                  xcb_atom_t second) {
    sendToManager(connection, window, Atom::NetWmState,
                  {static_cast<std::uint32_t>(change), first, second, kFromUser, 0});
}

bool isFar(double actual, double wished) {
    return std::abs(actual - wished) > kObeyed;
}

/// Returns the size of the client window for a frame of size `outer`; at least one pixel, because X11 has no
/// empty windows.
Size clientSize(const Size& outer, const Extents& extents) {
    return {std::max(outer.width - extents.left - extents.right, 1.0),
            std::max(outer.height - extents.top - extents.bottom, 1.0)};
}

} // namespace

Placement::Placement(Connection& connection, ClientWindows& windows)
    : m_connection(connection), m_windows(windows), m_barrier(connection), m_manager(connection) {}

bool Placement::place(xcb_window_t window, FrameWish wish) {
    const auto before = m_windows.frame(window);
    if (!before)
        return true;
    // A request without a size made a window manager increase the window's height, so the current size is
    // sent along. Not in states such as maximised, whose size is not the one to keep.
    if (!wish.size && before->states == WindowStates{})
        wish.size = before->outer().size();
    normalize(window, before->states);
    bool settled = ask(window, wish, before->extents);
    auto after = readBack(window);
    // Leaving the maximised or shaded state can change the frame extents. The first request was then computed
    // with the wrong ones: under openbox, xfwm4, marco and fluxbox the window ends up a few pixels too large.
    if (settled && after && after->extents != before->extents) {
        settled = ask(window, wish, after->extents);
        after = readBack(window);
    }
    if (settled && after && isHeldFrom(window, *after, wish))
        settled = insist(window, wish, before->outer(), *after);
    return settled;
}

/// `before` and `after` are the outer frames before the placement and after the last request.
bool Placement::insist(xcb_window_t window, const FrameWish& wish, const Rect& before,
                       const WindowFrame& after) {
    if (before != after.outer()) {
        // The frame has changed, but not to the requested one. A busy window manager may have tiled a window
        // that was just dropped at an edge, after `before` was read and before it processed the request.
        // Repeat the request; only if that changes nothing does a tile hold the window.
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

/// Sends the request to the window manager, or straight to the server when none runs that supports the hints.
bool Placement::ask(xcb_window_t window, const FrameWish& wish, const Extents& extents) {
    if (m_manager.state().suffices())
        askManager(window, wish, extents);
    else
        askServer(window, wish, extents);
    return m_barrier.wait();
}

void Placement::askManager(xcb_window_t window, const FrameWish& wish, const Extents& extents) {
    // The position refers to the window manager's frame. For client-decorated windows that is the X window
    // including the shadow, so the visible corner lies further in by the negative extents.
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

/// Configures the window itself, for a display without a suitable window manager. The values must be in the
/// order of the mask bits.
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

/// Takes the window out of the states in which window managers ignore or misinterpret a new frame. The state
/// change is sent right before the placement, without a wait in between.
void Placement::normalize(xcb_window_t window, const WindowStates& states) {
    if (states.maximizedHorizontally || states.maximizedVertically)
        changeStates(m_connection, window, StateChange::Remove,
                     m_connection.atom(Atom::NetWmStateMaximizedHorz),
                     m_connection.atom(Atom::NetWmStateMaximizedVert));
    if (states.shaded)
        changeStates(m_connection, window, StateChange::Remove, m_connection.atom(Atom::NetWmStateShaded), 0);
}

/// Returns whether the window manager has refused the frame: the position differs, or the size differs and
/// the client's size hints do not explain it. Wishes without a position are never treated as refused.
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

/// Releases a window that the window manager has tiled at a screen edge.
///
/// metacity, marco and kwin ignore requests for such a window, and kwin publishes no EWMH state for it at
/// all. Maximising and restoring it ends the tiling in marco and kwin; in metacity nothing does.
void Placement::releaseFromTile(xcb_window_t window) {
    for (const StateChange change : {StateChange::Add, StateChange::Remove})
        changeStates(m_connection, window, change, m_connection.atom(Atom::NetWmStateMaximizedHorz),
                     m_connection.atom(Atom::NetWmStateMaximizedVert));
}

/// Returns the frame that the window really has now.
std::optional<WindowFrame> Placement::readBack(xcb_window_t window) {
    m_windows.forgetFrame(window);
    return m_windows.frame(window);
}

} // namespace tessarel::x11
