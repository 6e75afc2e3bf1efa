// SPDX-License-Identifier: MIT

#include "platform/wayland/accessibility.h"

#include "model/call_on_end.h"
#include "platform/wayland/coordinates.h"

#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarel::wayland {

namespace {

constexpr ProcessId kNoProcess = 0;

/// How long after a write a change of the frame counts as the program's correction of it. If the window has
/// settled late, the time begins then.
constexpr std::chrono::milliseconds kCorrectionTime{500};

/// The content of an element's handle: a process, a window of a process, or, without either, the whole
/// desktop.
struct NativeElement {
    ProcessId pid = kNoProcess;
    WindowId window = kNoWindow;
};

Element makeElement(ProcessId pid, WindowId window) {
    return {std::make_shared<const NativeElement>(NativeElement{pid, window})};
}

/// Returns the content of an element, which is the whole desktop for an element without a handle.
NativeElement nativeElement(const Element& element) {
    return element.handle ? *static_cast<const NativeElement*>(element.handle.get()) : NativeElement{};
}

/// Returns whether the process is this program, whose own windows the port never reports.
bool isOwn(ProcessId pid) {
    return pid == ::getpid();
}

std::optional<AttributeValue> subrole(WindowKind kind) {
    switch (kind) {
    case WindowKind::Standard:
        return "AXStandardWindow";
    case WindowKind::Dialog:
        return "AXDialog";
    case WindowKind::Floating:
        return "AXFloatingWindow";
    case WindowKind::Other:
        return std::nullopt;
    }
    return std::nullopt;
}

bool isOnScreen(const WindowState& window) {
    return !window.isMinimized && window.isOnCurrentDesktop;
}

} // namespace

Accessibility::Accessibility(Mirror& mirror, Compositor& compositor, Applications& applications,
                             ApplicationWatch& watch, MainQueuePort& queue)
    : m_mirror(mirror), m_applications(applications), m_watch(watch), m_queue(queue),
      m_placement(mirror, compositor, queue),
      m_frameChanges(
          mirror.onFrameChanged([this](WindowId window, const Rect& frame) { frameChanged(window, frame); })),
      m_replacements(mirror.onReplaced([this](WindowId window) { m_writes.erase(window); })),
      m_userMoves(mirror.onMove([this](const UserMove& move) { m_writes.erase(move.window); })) {}

Element Accessibility::application(ProcessId pid) {
    return makeElement(pid, kNoWindow);
}

Element Accessibility::systemWide() {
    return makeElement(kNoProcess, kNoWindow);
}

void Accessibility::setMessagingTimeout(const Element& /*element*/, std::chrono::milliseconds /*limit*/) {}

/// Returns the window whose frame contains the point, unless it belongs to this program or is no window for
/// work. If there are several, it is the one that the user moves, which need not be in front, or else the
/// topmost.
std::optional<Element> Accessibility::elementAtPosition(const Element& within, const Point& axPoint) {
    const auto point = compositorFromAx(axPoint, m_mirror.primary());
    if (!within.handle || !point)
        return std::nullopt;
    const ProcessId wanted = nativeElement(within).pid;
    std::vector<WindowId> order = m_mirror.frontToBack();
    if (m_mirror.find(m_mirror.movedByUser()) != nullptr)
        order.insert(order.begin(), m_mirror.movedByUser());
    for (const WindowId id : order) {
        const WindowState& window = *m_mirror.find(id);
        const bool isOwnOverlay = isOwn(window.pid) && window.kind == WindowKind::Other;
        if (!isOnScreen(window) || isOwnOverlay || !window.frame.contains(*point))
            continue;
        if (isOwn(window.pid) || window.kind == WindowKind::Other ||
            (wanted != kNoProcess && wanted != window.pid))
            return std::nullopt;
        return makeElement(window.pid, id);
    }
    return std::nullopt;
}

std::optional<AttributeValue> Accessibility::copyAttribute(const Element& element,
                                                           std::string_view attribute) {
    const auto [pid, window] = nativeElement(element);
    if (pid <= 0 || isOwn(pid))
        return std::nullopt;
    if (window == kNoWindow)
        return applicationAttribute(pid, attribute);
    if (attribute == attribute::kPosition || attribute == attribute::kSize) {
        m_placement.finish(window); // a read after a write returns the settled value
        if (m_placement.isLate(window) || m_placement.isPostponed(window)) {
            m_writes[window].isUnread = true;
            return std::nullopt;
        }
    }
    return windowAttribute(element, attribute);
}

std::optional<AttributeValue> Accessibility::applicationAttribute(ProcessId pid,
                                                                  std::string_view attribute) const {
    if (attribute == attribute::kFocusedWindow) {
        const WindowState* const active = m_mirror.find(m_mirror.active());
        if (active == nullptr || active->pid != pid)
            return std::nullopt;
        return makeElement(pid, m_mirror.active());
    }
    if (attribute != attribute::kWindows)
        return std::nullopt;
    std::vector<Element> windows;
    for (const WindowId id : m_mirror.frontToBack()) {
        if (m_mirror.find(id)->pid == pid)
            windows.push_back(makeElement(pid, id));
    }
    return windows.empty() ? std::nullopt : std::optional<AttributeValue>(std::move(windows));
}

std::optional<AttributeValue> Accessibility::windowAttribute(const Element& element,
                                                             std::string_view attribute) const {
    const WindowId id = nativeElement(element).window;
    const WindowState* const window = m_mirror.find(id);
    if (window == nullptr)
        return std::nullopt;
    if (attribute == attribute::kPosition || attribute == attribute::kSize) {
        const Rect frame = axFromCompositor(window->frame, m_mirror.primary());
        return attribute == attribute::kPosition ? AttributeValue(frame.origin())
                                                 : AttributeValue(frame.size());
    }
    if (attribute == attribute::kMinimized)
        return window->isMinimized;
    if (attribute == attribute::kFullScreen)
        return window->isFullScreen;
    if (attribute == attribute::kRole)
        return std::string(window->kind == WindowKind::Other ? "AXUnknown" : "AXWindow");
    if (attribute == attribute::kSubrole)
        return subrole(window->kind);
    if (attribute == attribute::kWindow)
        return element;
    return std::nullopt;
}

void Accessibility::setAttribute(const Element& element, std::string_view attribute,
                                 const AttributeValue& value) {
    const auto [pid, window] = nativeElement(element);
    if (m_mirror.find(window) == nullptr || isOwn(pid))
        return;
    FrameWish wish;
    if (const auto* const position = std::get_if<Point>(&value);
        position && attribute == attribute::kPosition)
        wish.origin = compositorFromAx(*position, m_mirror.primary());
    if (const auto* const size = std::get_if<Size>(&value); size && attribute == attribute::kSize)
        wish.size = compositorFromAx(*size);
    if (!wish.origin && !wish.size)
        return;
    m_placement.write(window, wish);
    std::erase_if(m_writes, [this](const auto& one) {
        return !isOfInterest(one.second) || m_mirror.find(one.first) == nullptr;
    });
    m_writes[window] = {m_queue.now()};
}

bool Accessibility::canExpress(const Rect& axFrame) {
    return compositorFromAx(axFrame.origin(), m_mirror.primary()) && compositorFromAx(axFrame.size());
}

/// Processes have even keys. No key is reused while the program runs.
std::uintptr_t Accessibility::key(const Element& element) {
    const auto [pid, window] = nativeElement(element);
    return window != kNoWindow ? elementKey(window)
                               : static_cast<std::uintptr_t>(2) * static_cast<std::uint32_t>(pid);
}

SubscriptionPtr Accessibility::onWindowCreated(const Element& application,
                                               std::function<void(const Element& window)> created) {
    const ProcessId pid = nativeElement(application).pid;
    if (pid <= 0 || isOwn(pid) || !m_applications.ofProcess(pid))
        return nullptr;
    return m_watch.onWindow(
        pid, [pid, created = std::move(created)](WindowId window) { created(makeElement(pid, window)); });
}

SubscriptionPtr Accessibility::onWindowClosed(const Element& window, std::function<void()> closed) {
    const auto [pid, id] = nativeElement(window);
    if (isOwn(pid) || m_mirror.find(id) == nullptr)
        return nullptr;
    return m_watch.onClosed(id, std::move(closed));
}

std::optional<ProcessId> Accessibility::pid(const Element& element) {
    const ProcessId pid = nativeElement(element).pid;
    return pid <= kNoProcess ? std::nullopt : std::optional(pid);
}

std::optional<RunningApplication> Accessibility::owner(const Element& window) {
    const WindowState* const state = m_mirror.find(nativeElement(window).window);
    return state == nullptr ? std::nullopt : std::optional(m_applications.ofWindow(*state));
}

bool Accessibility::hasRefused(const Element& window) {
    m_placement.finish(nativeElement(window).window);
    return false;
}

SubscriptionPtr Accessibility::writeSeveral() {
    m_placement.beginSeveral();
    return callOnEnd([this] { endSeveral(); });
}

void Accessibility::endSeveral() {
    for (const WindowId id : m_placement.endSeveral()) {
        const WindowState* const window = m_mirror.find(id);
        if (window != nullptr && !m_placement.isLate(id))
            sendCorrected(id, window->frame);
    }
}

SubscriptionPtr
Accessibility::onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) {
    return m_corrected.connect(std::move(corrected));
}

void Accessibility::frameChanged(WindowId window, const Rect& frame) {
    const auto write = m_writes.find(window);
    if (write != m_writes.end() && isOfInterest(write->second))
        sendCorrected(window, frame);
}

void Accessibility::sendCorrected(WindowId id, const Rect& frame) {
    Write& write = m_writes[id];
    if (std::exchange(write.isUnread, false))
        write.time = m_queue.now();
    if (const WindowState* const window = m_mirror.find(id))
        m_corrected.send(makeElement(window->pid, id), axFromCompositor(frame, m_mirror.primary()));
}

bool Accessibility::isOfInterest(const Write& write) const {
    return write.isUnread || m_queue.now() - write.time <= kCorrectionTime;
}

} // namespace tessarel::wayland
