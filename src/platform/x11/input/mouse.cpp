// SPDX-License-Identifier: MIT

#include "platform/x11/input/mouse.h"

#include "model/call_on_end.h"
#include "platform/x11/displays/conversions.h"
#include "platform/x11/input/modifier_flags.h"
#include "platform/x11/windows/window_at_point.h"
#include "platform/x11/windows/window_traits.h"
#include "platform/xkb/keycode_table.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <unistd.h>
#include <utility>

namespace tessarel::x11 {

namespace {

/// The highest button that can act as the left one. Higher ones are the wheel (4 to 7) and side buttons.
constexpr std::uint32_t kLastOrdinaryButton = 3;

/// Virtual key code of the key that takes a dragged window back.
constexpr std::uint32_t kEscape = 53;

// How often, and at which interval, to query again while another client's grab hides the press.
constexpr int kLooksForPress = 10;
constexpr std::chrono::milliseconds kBetweenLooks{25};

bool isAnyDown(const PointerState& pointer) {
    return (pointer.buttons & 0b1110U) != 0;
}

bool isLeftDown(const PointerState& pointer) {
    return (pointer.buttons & 0b10U) != 0;
}

} // namespace

/// Returns the presses of one master pointer.
X11Mouse::Presses X11Mouse::pressesOf(const Presses& presses, DeviceId device) {
    Presses own = presses;
    std::erase_if(own, [device](const Press& press) { return press.device != device; });
    return own;
}

X11Mouse::X11Mouse(Connection& connection, Monitors& monitors, ClientWindows& windows, MainQueuePort& queue)
    : m_connection(connection), m_monitors(monitors), m_windows(windows), m_queue(queue), m_raw(connection),
      m_observer(connection.onRead([this](const Connection::Event& event) { noteRead(event); })),
      m_events(connection.onEvent([this](const Connection::Event& event) { hear(event); })) {}

X11Mouse::~X11Mouse() {
    m_raw.select(RawMouse::Selection::Nothing);
    m_connection.flush();
}

SubscriptionPtr X11Mouse::addGlobalMonitor(MouseEventKind kind,
                                           std::function<void(const MouseEvent&)> handler) {
    if (!m_raw.isAvailable())
        return nullptr;
    auto connection = m_handlers[static_cast<std::size_t>(kind)].connect(std::move(handler));
    updateSelection();
    return callOnEnd([this, alive = m_lifetime.watch(),
                      connected = std::shared_ptr<Subscription>(std::move(connection))]() mutable {
        connected.reset();
        if (!alive.expired())
            updateSelection();
    });
}

bool X11Mouse::isMonitored() const {
    return std::ranges::any_of(m_handlers, [](const auto& handlers) { return handlers.connections() > 0; });
}

/// Selects the raw events that are needed now. When the last monitor goes, drops the drag in progress: there
/// is no handler left for its release.
void X11Mouse::updateSelection() {
    if (!isMonitored()) {
        m_held.reset();
        m_news = {};
    }
    m_raw.select(!isMonitored() ? RawMouse::Selection::Nothing
                 : m_held       ? RawMouse::Selection::Everything
                                : RawMouse::Selection::Presses);
    m_connection.flush();
}

/// Counts raw events as soon as they are read, so that `hear` knows whether more of them are queued.
void X11Mouse::noteRead(const Connection::Event& event) {
    const auto raw = m_raw.read(event);
    if (!raw)
        return;
    ++m_unheard;
    m_hasMore |= m_isLooking;
    if (m_held && raw->kind == RawMouseKind::Release && Press{raw->device, raw->button} == m_held->press)
        m_held->isReleaseRead = true;
}

/// Merges a delivered raw event into `m_news` and queries the pointer after the last event of a batch.
void X11Mouse::hear(const Connection::Event& event) {
    const auto raw = m_raw.read(event);
    if (!raw)
        return;
    m_unheard -= m_unheard > 0 ? 1 : 0;
    note(*raw);
    if (m_unheard > 0)
        return;
    // With a fast mouse, more events arrive during every query. Querying again at once would starve the main
    // queue, so the next query goes through the queue.
    if (std::exchange(m_hasMore, false))
        lookLater({});
    else
        look();
}

void X11Mouse::note(const RawMouseEvent& event) {
    const Press press{event.device, event.button};
    if (event.kind == RawMouseKind::Release)
        noteRelease(press);
    else if (event.kind == RawMouseKind::Press && event.button <= kLastOrdinaryButton)
        notePress(press);
    else if (event.kind == RawMouseKind::Motion && m_held && event.device == m_held->press.device)
        m_news.moved = true;
    else if (event.kind == RawMouseKind::Key && m_held && event.device == m_held->keyboard)
        noteKey(event.keycode);
}

void X11Mouse::noteKey(std::uint32_t keycode) {
    if (m_news.heldReleased)
        return;
    m_news.typed = true;
    m_news.cancelled |= keycode == xkb::keycodeOf(kEscape);
}

void X11Mouse::notePress(const Press& press) {
    m_news.presses.push_back(press);
    m_looksLeft = kLooksForPress;
}

/// Drops a press that is over before the query; its button is up again.
void X11Mouse::noteRelease(const Press& press) {
    if (m_held && press == m_held->press) {
        m_news.heldReleased = true;
        m_held->isReleaseRead = false;
    }
    std::erase(m_news.presses, press);
}

void X11Mouse::lookLater(MainQueuePort::Duration delay) {
    if (m_scheduledLook)
        return;
    m_scheduledLook = m_queue.asyncAfter(delay, [this] {
        m_scheduledLook.reset();
        look();
    });
}

/// Queries the pointer and delivers the events that result from it and from `m_news`.
void X11Mouse::look() {
    if (!isMonitored() || !m_news.any() || m_isLooking)
        return;
    // Selected before the query, so that no release is lost between its reply and the selection.
    if (!m_news.presses.empty())
        m_raw.select(RawMouse::Selection::Everything);
    const News news = std::exchange(m_news, {});
    if (!m_held && news.presses.empty())
        return;
    m_isLooking = true;
    const DeviceId device = m_held ? m_held->press.device : news.presses.front().device;
    const auto pointer = m_raw.query(device);
    const auto alive = m_lifetime.watch();
    if (pointer && m_held)
        follow(news, *pointer);
    else if (pointer)
        takePress(pressesOf(news.presses, device), *pointer);
    else if (m_held)
        endWithDevice();
    if (alive.expired())
        return;
    m_isLooking = false;
    lookAtOthers(news.presses, device);
    updateSelection();
}

/// Delivers the press of the left button. `presses` are those of one master pointer.
///
/// Raw events report physical buttons, while the reply's buttons are after the user's mapping. If the left
/// button is down there, one of the pressed physical buttons acts as the left one: button 1 if it is among
/// them, else the first.
void X11Mouse::takePress(const Presses& presses, const PointerState& pointer) {
    if (presses.empty())
        return;
    if (!isLeftDown(pointer)) {
        if (!isAnyDown(pointer))
            keepInMind(presses);
        return;
    }
    const DeviceId device = presses.front().device;
    const auto first = std::ranges::find(presses, Press{device, 1});
    m_held = {.press = first != presses.end() ? *first : presses.front(),
              .keyboard = m_raw.keyboardOf(device),
              .isOurs = isOverOwnWindow(pointer)};
    report(MouseEventKind::LeftDown, pointer.rootPoint, pointer.modifiers);
}

/// Puts the presses back and schedules another query.
///
/// While another client's grab freezes the pointer, the reply does not show a button that is down. The button
/// may also be up again already, so the retries are limited, and motion is not selected between them.
void X11Mouse::keepInMind(const Presses& presses) {
    if (m_looksLeft == 0)
        return;
    --m_looksLeft;
    m_news.presses.insert(m_news.presses.begin(), presses.begin(), presses.end());
    lookLater(kBetweenLooks);
}

/// Puts back the presses of other master pointers than `device`, which has been queried. Drops them during a
/// drag.
void X11Mouse::lookAtOthers(const Presses& presses, DeviceId device) {
    if (m_held)
        return;
    Presses others = presses;
    std::erase_if(others, [device](const Press& press) { return press.device == device; });
    if (others.empty())
        return;
    m_news.presses.insert(m_news.presses.begin(), others.begin(), others.end());
    lookLater({});
}

/// Ends a drag whose master pointer has been removed. It is unknown where its button would have gone up.
void X11Mouse::endWithDevice() {
    const auto alive = m_lifetime.watch();
    const Held held = *m_held;
    report(MouseEventKind::Cancelled, held.lastRootPoint, held.lastModifiers);
    if (alive.expired() || !m_held)
        return;
    m_held.reset();
    if (!held.isOurs)
        deliver(MouseEventKind::LeftUp, held.lastRootPoint, held.lastModifiers);
}

/// Delivers the movement and the release of the held button.
void X11Mouse::follow(const News& news, const PointerState& pointer) {
    const auto alive = m_lifetime.watch();
    const bool isDown = isLeftDown(pointer);
    if (!isDown && !news.heldReleased && m_held->isReleaseRead) {
        m_news = news; // the release was read but is still queued; handle everything together with it
        return;
    }
    const Presses presses = pressesOf(news.presses, m_held->press.device);
    const bool isPressedAgain = std::ranges::find(presses, m_held->press) != presses.end();
    // If no key event preceded the release, the modifiers at the release are those of the last event; the
    // modifiers in the reply may already show a later change.
    const ModifierFlags modifiers =
        news.heldReleased && !news.typed ? m_held->lastModifiers : pointer.modifiers;
    // Compares the position too: when a client warps the pointer, the server sends no raw motion.
    const bool hasMoved =
        news.moved || pointer.rootPoint != m_held->lastRootPoint || modifiers != m_held->lastModifiers;
    if (news.cancelled && !isPressedAgain)
        report(MouseEventKind::Cancelled, pointer.rootPoint, modifiers);
    if (alive.expired() || !m_held) // a handler may have destroyed this object or removed the last monitor
        return;
    // When the release event was lost, it is unknown where it happened: do not report a drag to this
    // position.
    if (hasMoved && !isPressedAgain && (isDown || news.heldReleased))
        report(MouseEventKind::LeftDragged, pointer.rootPoint, modifiers);
    // Trusts the release event over the reply: while a window manager's grab freezes the pointer, it
    // still shows the button as down.
    const bool isOver = !isDown || news.heldReleased;
    if (!alive.expired() && m_held && isOver) { // `m_held` is empty if a handler has removed the last monitor
        const bool isOurs = std::exchange(m_held, std::nullopt)->isOurs;
        if (!isOurs)
            deliver(MouseEventKind::LeftUp, pointer.rootPoint, modifiers);
    }
    if (!alive.expired() && isPressedAgain)
        takePress(presses, pointer);
}

/// Delivers an event of the held button, unless the press was over a window of this program.
void X11Mouse::report(MouseEventKind kind, const Point& rootPoint, ModifierFlags modifiers) {
    if (m_held->isOurs)
        return;
    m_held->lastRootPoint = rootPoint;
    m_held->lastModifiers = modifiers;
    deliver(kind, rootPoint, modifiers);
}

/// Calls the handlers with an event in screen coordinates.
void X11Mouse::deliver(MouseEventKind kind, const Point& rootPoint, ModifierFlags modifiers) {
    if (m_monitors.all().empty())
        return;
    const Rect primary = m_monitors.all().front().rootFrame;
    const MouseEvent event{kind, screenFromRoot({rootPoint.x, rootPoint.y, 0, 0}, primary).origin(),
                           modifiers};
    m_handlers[static_cast<std::size_t>(kind)].send(event);
}

/// Returns whether the pointer is over a window of this program.
///
/// For an unmanaged window, such as a menu, the child of the root window belongs to this program. For a
/// managed one it is a frame of the window manager, so the client list has to be searched.
bool X11Mouse::isOverOwnWindow(const PointerState& pointer) {
    const ProcessId own = getpid();
    if (pointer.child == XCB_WINDOW_NONE)
        return false;
    if (PidRequest(m_connection, pointer.child).collect() == own)
        return true;
    if (m_windows.windowsOf(own).empty())
        return false;
    const auto window = windowAtPoint(m_connection, m_windows, pointer.rootPoint);
    return window && m_windows.pid(*window) == own;
}

} // namespace tessarel::x11
