// SPDX-License-Identifier: MIT

#include "platform/x11/applications/accessibility.h"

#include "platform/x11/displays/conversions.h"
#include "platform/x11/windows/window_at_point.h"

#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarel::x11 {

namespace {

constexpr ProcessId kNoProcess = 0;

/// The content of an element's handle: a process, a window of a process, or, without either, the whole
/// desktop.
struct NativeElement {
    ProcessId pid = kNoProcess;
    xcb_window_t window = XCB_WINDOW_NONE;
};

Element makeElement(ProcessId pid, xcb_window_t window) {
    return {std::make_shared<const NativeElement>(NativeElement{pid, window})};
}

/// Returns the content of an element, which is the whole desktop for an element without a handle.
NativeElement nativeElement(const Element& element) {
    return element.handle ? *static_cast<const NativeElement*>(element.handle.get()) : NativeElement{};
}

/// Returns whether the process is this program, whose own windows the port never reports.
bool isOwn(ProcessId pid) {
    return pid == getpid();
}

// The core works with the role names of the macOS accessibility API on every system.

std::string role(const WindowTraits& traits) {
    return traits.type == WindowType::Other ? "AXUnknown" : "AXWindow";
}

/// Returns the subrole for the EWMH type. Without a type, EWMH treats transient windows as dialogs and all
/// others as normal windows.
std::optional<AttributeValue> subrole(const WindowTraits& traits) {
    switch (traits.type) {
    case WindowType::Unspecified:
        return traits.isTransient ? "AXDialog" : "AXStandardWindow";
    case WindowType::Normal:
        return "AXStandardWindow";
    case WindowType::Dialog:
        return "AXDialog";
    case WindowType::Utility:
    case WindowType::Splash:
    case WindowType::Toolbar:
    case WindowType::Menu:
        return "AXFloatingWindow";
    case WindowType::Other:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

X11Accessibility::X11Accessibility(Connection& connection, Monitors& monitors, ClientWindows& windows,
                                   Applications& applications, ApplicationWatch& watch, MainQueuePort& queue)
    : m_connection(connection), m_monitors(monitors), m_windows(windows), m_applications(applications),
      m_watch(watch), m_queue(queue), m_corrections(connection, windows, queue),
      m_placement(connection, windows, [this](xcb_window_t window) { m_corrections.start(window); }),
      m_endOfTurn(connection.onEndTurn([this] { finishWrites(); })),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })) {}

Element X11Accessibility::application(ProcessId pid) {
    return makeElement(pid, XCB_WINDOW_NONE);
}

Element X11Accessibility::systemWide() {
    return makeElement(kNoProcess, XCB_WINDOW_NONE);
}

void X11Accessibility::setMessagingTimeout(const Element& /*element*/, std::chrono::milliseconds /*limit*/) {}

std::optional<Element> X11Accessibility::elementAtPosition(const Element& within, const Point& axPoint) {
    const auto rootPoint = rootFromAx(axPoint, m_monitors.primaryOrigin());
    if (!within.handle || !rootPoint)
        return std::nullopt;
    const auto window = windowAtPoint(m_connection, m_windows, *rootPoint);
    const auto pid = window ? m_windows.pid(*window) : std::nullopt;
    const ProcessId wanted = nativeElement(within).pid;
    if (!pid || isOwn(*pid) || (wanted != kNoProcess && wanted != *pid))
        return std::nullopt;
    return makeElement(*pid, *window);
}

std::optional<AttributeValue> X11Accessibility::copyAttribute(const Element& element,
                                                              std::string_view attribute) {
    const auto [pid, window] = nativeElement(element);
    if (pid <= 0 || isOwn(pid))
        return std::nullopt;
    if (window == XCB_WINDOW_NONE)
        return applicationAttribute(pid, attribute);
    if (window == m_written)
        finishWrites(); // a read after a write returns the settled value
    return isWindowOf(window, pid) ? windowAttribute(element, attribute) : std::nullopt;
}

std::optional<AttributeValue> X11Accessibility::applicationAttribute(ProcessId pid,
                                                                     std::string_view attribute) {
    if (attribute == attribute::kFocusedWindow)
        return focusedWindow(pid);
    if (attribute == attribute::kWindows)
        return windowsOf(pid);
    return std::nullopt;
}

std::optional<AttributeValue> X11Accessibility::focusedWindow(ProcessId pid) {
    const xcb_window_t active = m_windows.activeWindow();
    if (active == XCB_WINDOW_NONE || m_windows.pid(active) != pid)
        return std::nullopt;
    return makeElement(pid, active);
}

/// Returns the managed windows of the process, front to back, or `std::nullopt` when it has none.
std::optional<AttributeValue> X11Accessibility::windowsOf(ProcessId pid) {
    std::vector<Element> elements;
    for (const xcb_window_t window : m_windows.windowsOf(pid))
        elements.push_back(makeElement(pid, window));
    return elements.empty() ? std::nullopt : std::optional<AttributeValue>(std::move(elements));
}

std::optional<AttributeValue> X11Accessibility::windowAttribute(const Element& element,
                                                                std::string_view attribute) {
    const xcb_window_t window = nativeElement(element).window;
    const bool isGeometry = attribute == attribute::kPosition || attribute == attribute::kSize;
    // While a placement is unsettled, the frame in the server may be an intermediate one.
    const auto isUnsettled = [&] { return isGeometry && hasEnded(window, PlacementOutcome::Late); };
    if (isGeometry && !isUnsettled())
        m_corrections.catchUp(window); // may place the window, so the frame is read afterwards
    const auto frame = m_windows.frame(window);
    if (!frame || isUnsettled())
        return std::nullopt;
    if (attribute == attribute::kPosition)
        return axFromRoot(frame->outer(), m_monitors.primaryOrigin()).origin();
    if (attribute == attribute::kSize)
        return frame->outer().size();
    if (attribute == attribute::kMinimized)
        return frame->isMinimized;
    if (attribute == attribute::kFullScreen)
        return frame->states.fullScreen;
    if (attribute == attribute::kFrameExcess)
        return frameExcess(window, *frame);
    if (attribute == attribute::kRole)
        return role(m_windows.traits(window));
    if (attribute == attribute::kSubrole)
        return subrole(m_windows.traits(window));
    if (attribute == attribute::kWindow)
        return element;
    return std::nullopt;
}

/// Reads the window manager's frame after the client. metacity resizes the frame first: if the client has
/// not got its new size when it is read, the frame has.
std::optional<AttributeValue> X11Accessibility::frameExcess(xcb_window_t window, const WindowFrame& frame) {
    const bool isMaximized = frame.states.maximizedHorizontally || frame.states.maximizedVertically;
    const auto size = isMaximized ? std::nullopt : m_windows.frameWindowSize(window);
    if (!size)
        return std::nullopt;
    const Rect outer = frame.outer();
    return Size{size->width - outer.width, size->height - outer.height};
}

void X11Accessibility::setAttribute(const Element& element, std::string_view attribute,
                                    const AttributeValue& value) {
    const auto [pid, window] = nativeElement(element);
    if (window == XCB_WINDOW_NONE || isOwn(pid))
        return;
    const auto* const position = std::get_if<Point>(&value);
    const auto* const size = std::get_if<Size>(&value);
    const auto origin = attribute == attribute::kPosition && position
                            ? rootFromAx(*position, m_monitors.primaryOrigin())
                            : std::nullopt;
    const auto extent = attribute == attribute::kSize && size ? rootFromAx(*size) : std::nullopt;
    if ((!origin && !extent) || !isWindowOf(window, pid))
        return;
    if (m_written != window)
        finishWrites(); // writes are collected for one window at a time
    m_written = window;
    if (origin)
        m_wish.origin = origin;
    if (extent)
        m_wish.size = extent;
    m_connection.beginTurn(); // guarantees that the turn's end sends the write
}

/// Places the window as the collected writes demand. Does nothing when there are none.
void X11Accessibility::finishWrites() {
    const xcb_window_t window = std::exchange(m_written, XCB_WINDOW_NONE);
    const FrameWish wish = std::exchange(m_wish, {});
    if (window == XCB_WINDOW_NONE)
        return;
    m_last = {window, m_connection.turn(), m_placement.place(window, wish)};
    if (m_last.outcome == PlacementOutcome::Late)
        m_late.insert(window);
    else
        m_late.erase(window);
    if (m_last.outcome == PlacementOutcome::Refused)
        m_refusals.send();
}

/// Looks at each event as it is read: those that are delivered may stand for several of the same window.
void X11Accessibility::note(const Connection::Event& event) {
    if (!m_late.empty() && m_placement.isEnd(event))
        m_report = m_queue.async([this] { reportLate(); });
}

void X11Accessibility::reportLate() {
    for (const xcb_window_t window : std::exchange(m_late, {}))
        m_corrections.report(window);
}

bool X11Accessibility::hasEnded(xcb_window_t window, PlacementOutcome outcome) const {
    return m_last.window == window && m_last.turn == m_connection.turn() && m_last.outcome == outcome;
}

bool X11Accessibility::hasRefused(const Element& window) {
    finishWrites();
    return hasEnded(nativeElement(window).window, PlacementOutcome::Refused);
}

SubscriptionPtr
X11Accessibility::onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) {
    return m_corrections.onCorrection(
        [this, corrected = std::move(corrected)](xcb_window_t window, const Rect& outer) {
            if (const auto pid = m_windows.pid(window))
                corrected(makeElement(*pid, window), axFromRoot(outer, m_monitors.primaryOrigin()));
        });
}

SubscriptionPtr X11Accessibility::onRefusal(std::function<void()> refused) {
    return m_refusals.connect(std::move(refused));
}

bool X11Accessibility::canExpress(const Rect& axFrame) {
    return rootFromAx(axFrame.origin(), m_monitors.primaryOrigin()) && rootFromAx(axFrame.size());
}

std::uintptr_t X11Accessibility::key(const Element& element) {
    const auto [pid, window] = nativeElement(element);
    return elementKey(pid, window);
}

SubscriptionPtr X11Accessibility::onWindowCreated(const Element& application,
                                                  std::function<void(const Element& window)> created) {
    const ProcessId owner = nativeElement(application).pid;
    if (isOwn(owner) || !pid(makeElement(owner, XCB_WINDOW_NONE)))
        return nullptr;
    return m_watch.onWindow(owner, [owner, created = std::move(created)](xcb_window_t window) {
        created(makeElement(owner, window));
    });
}

SubscriptionPtr X11Accessibility::onWindowClosed(const Element& window, std::function<void()> closed) {
    const auto [owner, number] = nativeElement(window);
    if (number == XCB_WINDOW_NONE || isOwn(owner))
        return nullptr;
    return m_watch.onClosed(number, std::move(closed));
}

std::optional<ProcessId> X11Accessibility::pid(const Element& element) {
    const auto [pid, window] = nativeElement(element);
    const bool isThere =
        window != XCB_WINDOW_NONE ? isWindowOf(window, pid) : !m_windows.windowsOf(pid).empty();
    return isThere ? std::optional(pid) : std::nullopt;
}

std::optional<RunningApplication> X11Accessibility::owner(const Element& element) {
    const auto [pid, window] = nativeElement(element);
    const bool isThere = window != XCB_WINDOW_NONE && isWindowOf(window, pid);
    return isThere ? std::optional(m_applications.ofWindows(pid, {window})) : std::nullopt;
}

bool X11Accessibility::isWindowOf(xcb_window_t window, ProcessId pid) {
    return m_windows.pid(window) == pid && m_windows.frame(window);
}

} // namespace tessarel::x11
