// SPDX-License-Identifier: MIT

#include "platform/x11/windows/placement.h"

#include "platform/x11/windows/size_hints.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

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

Placement::Placement(Connection& connection, ClientWindows& windows,
                     std::function<void(xcb_window_t window)> beforeRead)
    : m_connection(connection), m_windows(windows), m_beforeRead(std::move(beforeRead)),
      m_barrier(connection) {}

PlacementOutcome Placement::place(xcb_window_t window, FrameWish wish) {
    const auto before = m_windows.frame(window);
    if (!before)
        return PlacementOutcome::Settled;
    chooseRoute();
    // A request without a size made a window manager increase the window's height, so the current size is
    // sent along. Not in states such as maximised, whose size is not the one to keep, and not for a window of
    // fixed size: fvwm refuses such a request as a whole.
    if (!wish.size && before->states == WindowStates{} && !readSizeHints(m_connection, window).isFixed())
        wish.size = before->outer().size();
    normalize(window, before->states);
    Task task{window, wish, before->outer(), *before};
    ask(task);
    // Leaving the maximised or shaded state can change the frame extents. The first request was then computed
    // with the wrong ones: under openbox, xfwm4, marco and fluxbox the window ends up a few pixels too large.
    if (!task.isLate && task.now.extents != before->extents)
        ask(task);
    if (isHeld(task))
        insist(task);
    if (hasStayed(task) && isHeld(task))
        tryOtherRoute(task);
    // fvwm refuses the size of a fixed window together with its position, and a window manager that waits for
    // a stopped program to draw the new size moves the window meanwhile if it is asked for that alone.
    if (hasStayed(task) && isHeld(task))
        moveOnly(task);
    if (task.isLate)
        return PlacementOutcome::Late;
    if (hasStayed(task))
        return isHeld(task) ? PlacementOutcome::Refused : PlacementOutcome::Settled;
    m_isProven = true;
    return PlacementOutcome::Settled;
}

/// Starts anew for another window manager.
void Placement::chooseRoute() {
    const WindowManagerState& manager = m_windows.manager();
    if (m_manager == manager.checkWindow && manager.running)
        return;
    m_manager = manager.checkWindow;
    m_isProven = false;
    m_route = manager.running && manager.movesOnMessage ? Route::Message : Route::Configure;
}

/// Requests only the position. Does nothing if the window is there already.
void Placement::moveOnly(Task& task) {
    if (task.now.outer().origin() == *task.wish.origin)
        return;
    const auto size = std::exchange(task.wish.size, std::nullopt);
    ask(task);
    task.wish.size = size;
}

/// Handles a refusal: repeats the request if the window manager has moved the window elsewhere, and releases
/// the window from its tile if that does not help.
void Placement::insist(Task& task) {
    if (!hasStayed(task)) {
        // The frame has changed, but not to the requested one. A busy window manager may have tiled a window
        // that was just dropped at an edge, after `before` was read and before it processed the request.
        // Repeat the request; only if that changes nothing does a tile hold the window.
        const Rect last = task.now.outer();
        ask(task);
        if (task.isLate || task.now.outer() != last)
            return;
    }
    if (m_route != Route::Message || !m_windows.manager().maximizes ||
        readSizeHints(m_connection, task.window).isFixed())
        return;
    releaseFromTile(task.window);
    ask(task);
}

/// Some window managers announce `_NET_MOVERESIZE_WINDOW` and ignore it.
void Placement::tryOtherRoute(Task& task) {
    if (m_isProven || m_route != Route::Message)
        return;
    m_route = Route::Configure;
    ask(task);
    if (hasStayed(task))
        m_route = Route::Message;
}

void Placement::ask(Task& task) {
    const WindowManagerState& manager = m_windows.manager();
    send(task, {});
    finish(task);
    if (!manager.running || (m_route == Route::Message && manager.publishesExtents))
        return;
    // awesome carries out the requests for managed windows once it has processed all that have arrived.
    if (m_route == Route::Configure && hasStayed(task) && isHeld(task))
        finish(task);
    correct(task);
}

/// Sends the wish by the current route, moved back by `deviation`.
void Placement::send(const Task& task, const Point& deviation) {
    if (m_route == Route::Message)
        sendMessage(task, deviation);
    else
        sendConfigure(task, deviation);
}

/// Waits until the window manager has processed the requests and reads the frame that the window really has
/// now. A window that has gone counts as late.
void Placement::finish(Task& task) {
    task.isLate = !m_barrier.wait();
    if (m_beforeRead)
        m_beforeRead(task.window);
    m_windows.forgetFrame(task.window);
    if (const auto frame = m_windows.frame(task.window))
        task.now = *frame;
    else
        task.isLate = true;
}

void Placement::sendMessage(const Task& task, const Point& deviation) {
    const FrameWish& wish = task.wish;
    const Extents& extents = task.now.extents;
    // The position refers to the window manager's frame. For client-decorated windows that is the X window
    // including the shadow, so the visible corner lies further in by the negative extents.
    const int shadowLeft = std::min(extents.left, 0);
    const int shadowTop = std::min(extents.top, 0);
    std::array<std::uint32_t, 5> data{kNorthWest | kFromUserShifted};
    if (wish.origin) {
        data[0] |= kHasOrigin;
        data[1] = wire(wish.origin->x + shadowLeft - deviation.x);
        data[2] = wire(wish.origin->y + shadowTop - deviation.y);
    }
    if (wish.size) {
        data[0] |= kHasSize;
        const Size client = clientSize(*wish.size, extents);
        data[3] = wire(client.width);
        data[4] = wire(client.height);
    }
    sendToManager(m_connection, task.window, Atom::NetMoveResizeWindow, data);
}

/// Sends what a program sends that moves its own window: the server redirects the request to the window
/// manager if there is one. The values must be in the order of the mask bits.
void Placement::sendConfigure(const Task& task, const Point& deviation) {
    const FrameWish& wish = task.wish;
    const Extents& extents = task.now.extents;
    std::uint16_t mask = 0;
    std::array<std::uint32_t, 4> list{};
    std::size_t count = 0;
    if (wish.origin) {
        // A window manager places the corner of its frame, unless the client's gravity is static.
        const bool placesClient =
            !m_windows.manager().running || readSizeHints(m_connection, task.window).hasStaticGravity;
        const int left = placesClient ? extents.left : std::min(extents.left, 0);
        const int top = placesClient ? extents.top : std::min(extents.top, 0);
        mask |= XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
        list[count++] = wire(wish.origin->x + left - deviation.x);
        list[count++] = wire(wish.origin->y + top - deviation.y);
    }
    if (wish.size) {
        mask |= XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
        const Size client = clientSize(*wish.size, extents);
        list[count++] = wire(client.width);
        list[count++] = wire(client.height);
    }
    xcb_configure_window(m_connection.xcb(), task.window, mask, list.data());
}

/// Requests the position again if the frame misses it by no more than its own extents: window managers differ
/// in how they apply the gravity of a client and the border of their frame. i3 places the client where the
/// frame should be, also on a message.
void Placement::correct(Task& task) {
    if (!task.wish.origin || task.isLate || hasStayed(task))
        return;
    const Rect outer = task.now.outer();
    const Extents& extents = task.now.extents;
    const Point deviation{outer.x - task.wish.origin->x, outer.y - task.wish.origin->y};
    const bool isGravity = std::abs(deviation.x) <= std::abs(extents.left) + std::abs(extents.right) &&
                           std::abs(deviation.y) <= std::abs(extents.top) + std::abs(extents.bottom);
    if (deviation == Point{} || !isGravity)
        return;
    send(task, deviation);
    finish(task);
}

/// Takes the window out of the states in which window managers ignore or misinterpret a new frame. The state
/// change is sent right before the placement, without a wait in between.
void Placement::normalize(xcb_window_t window, const WindowStates& states) {
    // Only the states that the window has: pekwm takes the removal of another one for a toggle.
    const xcb_atom_t horizontal = m_connection.atom(Atom::NetWmStateMaximizedHorz);
    const xcb_atom_t vertical = m_connection.atom(Atom::NetWmStateMaximizedVert);
    if (states.maximizedHorizontally)
        changeStates(m_connection, window, StateChange::Remove, horizontal,
                     states.maximizedVertically ? vertical : xcb_atom_t{XCB_ATOM_NONE});
    else if (states.maximizedVertically)
        changeStates(m_connection, window, StateChange::Remove, vertical, XCB_ATOM_NONE);
    if (states.shaded)
        changeStates(m_connection, window, StateChange::Remove, m_connection.atom(Atom::NetWmStateShaded), 0);
}

/// Returns whether the window manager has processed the request and refused the frame: the position differs,
/// or the size differs and the client's size hints do not explain it. Wishes without a position are never
/// treated as refused.
bool Placement::isHeld(const Task& task) {
    const auto& [origin, size] = task.wish;
    if (task.isLate || !origin)
        return false;
    const Rect outer = task.now.outer();
    if (isFar(outer.x, origin->x) || isFar(outer.y, origin->y))
        return true;
    if (!size || (!isFar(outer.width, size->width) && !isFar(outer.height, size->height)))
        return false;
    return !readSizeHints(m_connection, task.window)
                .explain(task.now.client.size(), clientSize(*size, task.now.extents));
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

} // namespace tessarel::x11
