// SPDX-License-Identifier: MIT

#include "snap/drag_snap.h"

#include "engine/screens.h"

#include <chrono>
#include <cmath>
#include <utility>

namespace tessarel {

namespace {

using namespace std::chrono_literals;

/// Minimum time between two reads of the candidate's frame: movements are far more frequent.
constexpr MainQueuePort::Duration kReadInterval = 30ms;
/// Time for the system to finish its own drag, after which it does not move the window again.
constexpr MainQueuePort::Duration kPlacementDelay = 30ms;
/// After this many consecutive failures the window is assumed to be closed, or its program to hang.
constexpr int kMostFailedReads = 2;
/// Movement that does not count as a drag yet, in the unit of the coordinates.
constexpr double kMoveTolerance = 3;
/// Change of size from which the size counts as changed, in the unit of the coordinates.
constexpr double kResizeTolerance = 3;
/// How far the edge opposite to a dragged border may still move: window managers round.
constexpr double kFixedEdgeTolerance = 1;
/// How far inside a window its border may be pressed to resize it, in the unit of the coordinates.
constexpr double kBorder = 8;

bool isMoved(const Rect& axFrame, const Rect& start) {
    return std::abs(axFrame.minX() - start.minX()) > kMoveTolerance ||
           std::abs(axFrame.minY() - start.minY()) > kMoveTolerance;
}

bool isNear(double a, double b) {
    return std::abs(a - b) <= kFixedEdgeTolerance;
}

bool isSizeChanged(const Rect& axFrame, const Rect& start) {
    return std::abs(axFrame.absWidth() - start.absWidth()) >= kResizeTolerance ||
           std::abs(axFrame.absHeight() - start.absHeight()) >= kResizeTolerance;
}

/// Returns whether the window shrinks, as it does when it is pulled out of its maximised or tiled place.
bool shrinks(const Rect& axFrame, const Rect& start) {
    return axFrame.absWidth() < start.absWidth() + kResizeTolerance &&
           axFrame.absHeight() < start.absHeight() + kResizeTolerance;
}

/// The borders of a window that a press may have taken.
struct Borders {
    bool left = false;
    bool right = false;
    bool top = false;
    bool bottom = false;

    [[nodiscard]] bool any() const { return left || right || top || bottom; }
};

Borders bordersAt(const Point& axPoint, const Rect& axFrame) {
    return {.left = axPoint.x < axFrame.minX() + kBorder,
            .right = axPoint.x >= axFrame.maxX() - kBorder,
            .top = axPoint.y < axFrame.minY() + kBorder,
            .bottom = axPoint.y >= axFrame.maxY() - kBorder};
}

/// Returns whether the size changes as if one of `borders` was being dragged: the opposite edge stays. The
/// top border may be thicker than expected, so it counts for every press unless the width changes as well.
bool isBorderDragged(const Rect& axFrame, const Rect& start, const Borders& borders) {
    const bool isWidthChanged = std::abs(axFrame.absWidth() - start.absWidth()) >= kResizeTolerance;
    const bool isHeightChanged = std::abs(axFrame.absHeight() - start.absHeight()) >= kResizeTolerance;
    return (isWidthChanged && borders.left && isNear(axFrame.maxX(), start.maxX())) ||
           (isWidthChanged && borders.right && isNear(axFrame.minX(), start.minX())) ||
           (isHeightChanged && borders.bottom && isNear(axFrame.minY(), start.minY())) ||
           (isHeightChanged && (borders.top || !isWidthChanged) && isNear(axFrame.maxY(), start.maxY()));
}

/// Returns the candidate's `kFrameExcess` if a press at `axPress` takes its border; no other press needs it.
std::optional<Size> borderExcess(const AX& ax, const Candidate& candidate, const Point& axPress) {
    return bordersAt(axPress, candidate.axFrame).any() ? ax.size(candidate.window, attribute::kFrameExcess)
                                                       : std::nullopt;
}

} // namespace

DragSnap::DragSnap(const Uses& uses)
    : m_uses(uses), m_picker(uses.ax, uses.engine), m_offers(uses.geo, uses.store),
      m_placements(uses.mainQueue) {}

DragSnap::~DragSnap() {
    stop();
}

void DragSnap::start() {
    stop();
    watch(MouseEventKind::LeftDown, &DragSnap::mouseDown);
    watch(MouseEventKind::LeftDragged, &DragSnap::mouseDragged);
    watch(MouseEventKind::LeftUp, &DragSnap::mouseUp);
    watch(MouseEventKind::Cancelled, &DragSnap::cancelled);
}

void DragSnap::stop() {
    m_monitors.clear();
    reset();
}

void DragSnap::watch(MouseEventKind kind, Handler handler) {
    auto monitor = m_uses.mouse.addGlobalMonitor(
        kind, [this, handler](const MouseEvent& event) { (this->*handler)(event); });
    if (monitor)
        m_monitors.push_back(std::move(monitor));
}

/// Ends the drag, if there is one, without placing the window.
void DragSnap::reset() {
    m_drag.reset();
    m_uses.overlay.hide();
}

void DragSnap::mouseDown(const MouseEvent& event) {
    // The release of an earlier press may have been lost.
    reset();
    const bool isWanted = m_uses.store.settings.dragEnabled && !m_uses.runtime.paused;
    if (!isWanted || !m_uses.permissions.isTrusted())
        return;
    const Point axPoint = m_uses.geo.axPoint(event.screenLocation);
    const auto candidate = m_picker.pick(axPoint);
    if (!candidate)
        return;
    const auto frameExcess = borderExcess(m_uses.ax, *candidate, axPoint);
    auto closed = m_uses.ax.onWindowClosed(candidate->window, [this] { reset(); });
    m_drag = Drag{.candidate = *candidate,
                  .candidateClosed = std::move(closed),
                  .lastEvent = event,
                  .press = event.screenLocation,
                  .axPress = axPoint,
                  .frameExcess = frameExcess,
                  .movedFrame = {},
                  .nextRead = {},
                  .target = {}};
}

void DragSnap::mouseDragged(const MouseEvent& event) {
    if (!m_drag)
        return;
    m_drag->lastEvent = event;
    if (!m_drag->isMoving && !candidateMoves())
        return;
    m_drag->isMoving = true;
    m_drag->nextRead.reset();
    follow(event);
}

/// Returns whether the candidate has moved and none of its borders is being dragged. Returns false without
/// reading the frame if the last read is less than `kReadInterval` ago. May end the drag.
bool DragSnap::candidateMoves() {
    const auto now = m_uses.mainQueue.now();
    if (m_lastRead && now < *m_lastRead + kReadInterval)
        return false;
    m_lastRead = now;
    const Candidate candidate = m_drag->candidate;
    const Point axPress = m_drag->axPress;
    const auto axFrame = m_uses.ax.frame(candidate.window);
    const auto excess = borderExcess(m_uses.ax, candidate, axPress);
    // The reads may have revealed that the window has closed.
    if (!m_drag)
        return false;
    m_drag->failedReads = axFrame ? 0 : m_drag->failedReads + 1;
    if (m_drag->failedReads == kMostFailedReads)
        reset();
    if (!axFrame)
        return false;
    const Rect& start = candidate.axFrame;
    const Borders borders = bordersAt(axPress, start);
    if (isBorderDragged(*axFrame, start, borders)) {
        m_drag->movedFrame.reset();
        return false;
    }
    if (borders.any())
        return isMoved(*axFrame, start) && keepsItsSize(*axFrame, excess);
    // Window managers that draw a dragged window to the screen's edges may keep its corner where it was, so a
    // change of size, as of a window that is pulled out of its place, is enough. One that grows may have been
    // maximised by a double click: it has to move on.
    if (isSizeChanged(*axFrame, start))
        return hasPointerMoved() && (shrinks(*axFrame, start) || goesOnMoving(*axFrame));
    return isMoved(*axFrame, start);
}

bool DragSnap::goesOnMoving(const Rect& axFrame) {
    const auto before = std::exchange(m_drag->movedFrame, axFrame);
    return before && before->size() == axFrame.size() && before->origin() != axFrame.origin();
}

/// Returns whether the pointer has left the place of the press. A double click changes the size of some
/// windows without that.
bool DragSnap::hasPointerMoved() const {
    const Point& now = m_drag->lastEvent.screenLocation;
    return std::hypot(now.x - m_drag->press.x, now.y - m_drag->press.y) > kMoveTolerance;
}

/// Some window managers follow a dragged border by moving the window first and resizing it a moment later, so
/// its size lags behind. A window that was pressed at its border counts as dragged only if two reads in a row
/// find it moved and with exactly the same size, and if its frame has not been resized without it. The second
/// read comes even if the pointer rests.
bool DragSnap::keepsItsSize(const Rect& axFrame, const std::optional<Size>& frameExcess) {
    const auto before = std::exchange(m_drag->movedFrame, axFrame);
    const auto& excessBefore = m_drag->frameExcess;
    const bool isInStep = !frameExcess || !excessBefore || *frameExcess == *excessBefore;
    if (isInStep && before && before->size() == axFrame.size())
        return true;
    m_drag->nextRead =
        m_uses.mainQueue.asyncAfter(kReadInterval, [this] { mouseDragged(MouseEvent(m_drag->lastEvent)); });
    return false;
}

void DragSnap::cancelled(const MouseEvent& /*event*/) {
    reset();
}

void DragSnap::follow(const MouseEvent& event) {
    // Set again below only if there is a zone, so that a release elsewhere leaves the window alone.
    m_drag->target.reset();
    const Screens screens = m_uses.geo.screens();
    const Screen* const screen = screens.showing(event.screenLocation);
    if (!screen) {
        m_uses.overlay.hide();
        return;
    }
    SnapOffer offer =
        m_offers.offer(screens, *screen, screens.axPoint(event.screenLocation), event.modifierFlags);
    if (offer.target)
        m_drag->target = Target{*offer.target, screens.axVisible(*screen), offer.zoneNumber};
    if (offer.items.empty())
        m_uses.overlay.hide();
    else
        m_uses.overlay.show(screens, *screen, std::move(offer.items));
}

void DragSnap::mouseUp(const MouseEvent& /*event*/) {
    const auto drag = std::exchange(m_drag, std::nullopt);
    m_uses.overlay.hide();
    if (!drag || !drag->target)
        return;
    m_placements.asyncAfter(kPlacementDelay, [this, candidate = drag->candidate, target = *drag->target] {
        place(candidate, target);
    });
}

/// Places the window. For restoring, its frame before the drag counts as the previous one, not where it was
/// dropped.
void DragSnap::place(const Candidate& candidate, const Target& target) {
    const bool isPlaced = m_uses.engine.place(candidate.window, candidate.pid, target.axFrame,
                                              target.axBounds, candidate.axFrame);
    if (!isPlaced || !target.zoneNumber)
        return;
    const auto app = m_uses.ax.owner(candidate.window, candidate.pid);
    m_uses.engine.remember(app ? app->bundleIdentifier : std::nullopt, *target.zoneNumber);
}

} // namespace tessarel
