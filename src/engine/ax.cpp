// SPDX-License-Identifier: MIT

#include "engine/ax.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace tessarel {

namespace {

/// How far a window may extend beyond its bounds before it is pulled back, in the unit of the coordinates.
constexpr double kOverflowTolerance = 1;

/// Returns the value if it is of type `Value`.
template <typename Value>
std::optional<Value> as(std::optional<AttributeValue> value) {
    auto* typed = value ? std::get_if<Value>(&*value) : nullptr;
    return typed ? std::optional(std::move(*typed)) : std::nullopt;
}

} // namespace

AX::AX(AccessibilityPort& accessibility, WorkspacePort& workspace)
    : m_accessibility(accessibility), m_workspace(workspace) {}

std::optional<AttributeValue> AX::copy(const Element& element, std::string_view attribute) const {
    return m_accessibility.copyAttribute(element, attribute);
}

std::optional<Element> AX::element(const Element& element, std::string_view attribute) const {
    return as<Element>(copy(element, attribute));
}

std::optional<Point> AX::point(const Element& element, std::string_view attribute) const {
    return as<Point>(copy(element, attribute));
}

std::optional<Size> AX::size(const Element& element, std::string_view attribute) const {
    return as<Size>(copy(element, attribute));
}

std::optional<std::string> AX::string(const Element& element, std::string_view attribute) const {
    return as<std::string>(copy(element, attribute));
}

std::optional<bool> AX::boolean(const Element& element, std::string_view attribute) const {
    const auto value = copy(element, attribute);
    if (!value)
        return {};
    if (const auto* number = std::get_if<double>(&*value))
        return *number != 0;
    const auto* truth = std::get_if<bool>(&*value);
    return truth ? std::optional(*truth) : std::nullopt;
}

std::optional<Rect> AX::frame(const Element& window) const {
    const auto position = point(window, attribute::kPosition);
    if (!position)
        return {};
    const auto extent = size(window, attribute::kSize);
    if (!extent)
        return {};
    return Rect{position->x, position->y, extent->width, extent->height};
}

std::vector<Element> AX::windows(ProcessId pid) const {
    const Element application = m_accessibility.application(pid);
    return as<std::vector<Element>>(copy(application, attribute::kWindows)).value_or(std::vector<Element>{});
}

std::optional<FocusedWindow> AX::focusedWindow() const {
    auto app = m_workspace.frontmostApplication();
    if (!app || app->processIdentifier == m_workspace.ownProcessIdentifier())
        return {};
    const Element application = m_accessibility.application(app->processIdentifier);
    auto window = element(application, attribute::kFocusedWindow);
    if (!window)
        return {};
    return FocusedWindow{std::move(*window), std::move(*app)};
}

bool AX::isUsable(const Element& window) const {
    const auto role = string(window, attribute::kRole);
    if (role && *role != "AXWindow")
        return false;
    if (boolean(window, attribute::kMinimized).value_or(false))
        return false;
    return !boolean(window, attribute::kFullScreen).value_or(false);
}

std::optional<Element> AX::windowAt(const Point& axPoint, std::chrono::milliseconds timeLimit) const {
    const Element systemWide = m_accessibility.systemWide();
    m_accessibility.setMessagingTimeout(systemWide, timeLimit);
    auto window = m_accessibility.elementAtPosition(systemWide, axPoint);
    if (window && string(*window, attribute::kRole) != "AXWindow")
        window = element(*window, attribute::kWindow);
    if (window)
        m_accessibility.setMessagingTimeout(*window, timeLimit);
    return window;
}

std::optional<ProcessId> AX::pid(const Element& element) const {
    return m_accessibility.pid(element);
}

std::optional<RunningApplication> AX::owner(const Element& window, ProcessId pid) const {
    auto app = m_accessibility.owner(window);
    return app ? app : m_workspace.runningApplication(pid);
}

SubscriptionPtr AX::onWindowCreated(ProcessId pid, std::chrono::milliseconds timeLimit,
                                    std::function<void(const Element&)> created) const {
    const Element application = m_accessibility.application(pid);
    m_accessibility.setMessagingTimeout(application, timeLimit);
    return m_accessibility.onWindowCreated(application, std::move(created));
}

SubscriptionPtr AX::onWindowClosed(const Element& window, std::function<void()> closed) const {
    return m_accessibility.onWindowClosed(window, std::move(closed));
}

SubscriptionPtr AX::writeSeveral() const {
    return m_accessibility.writeSeveral();
}

SubscriptionPtr
AX::onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) const {
    return m_accessibility.onCorrected(std::move(corrected));
}

std::uintptr_t AX::key(const Element& element) const {
    return m_accessibility.key(element);
}

bool AX::setFrame(const Element& window, ProcessId pid, const Rect& axFrame,
                  const std::optional<Rect>& bounds) {
    bool hasRefused = false;
    withEnhancedUIOff(pid, [&] {
        if (!m_accessibility.canExpress(axFrame))
            return;
        writeFrame(window, axFrame);
        hasRefused = m_accessibility.hasRefused(window);
        if (bounds && !hasRefused)
            pullInto(*bounds, window);
    });
    return !hasRefused;
}

void AX::writeFrame(const Element& window, const Rect& axFrame) {
    // Some systems clip the first size to the display that the window is still on. Writing it again after the
    // move corrects that.
    m_accessibility.setAttribute(window, attribute::kSize, axFrame.size());
    m_accessibility.setAttribute(window, attribute::kPosition, axFrame.origin());
    m_accessibility.setAttribute(window, attribute::kSize, axFrame.size());
}

/// Reads the frame back, because the program may have refused the size.
void AX::pullInto(const Rect& bounds, const Element& window) {
    const auto axFrame = frame(window);
    const auto corrected = axFrame ? originInside(bounds, *axFrame) : std::nullopt;
    if (corrected)
        m_accessibility.setAttribute(window, attribute::kPosition, *corrected);
}

std::optional<Point> AX::originInside(const Rect& bounds, const Rect& axFrame) {
    const bool overflowsRight = axFrame.maxX() > bounds.maxX() + kOverflowTolerance;
    const bool overflowsBottom = axFrame.maxY() > bounds.maxY() + kOverflowTolerance;
    if (!overflowsRight && !overflowsBottom)
        return {};
    Point corrected = axFrame.origin();
    if (overflowsRight)
        corrected.x = std::max(bounds.minX(), bounds.maxX() - axFrame.absWidth());
    if (overflowsBottom)
        corrected.y = std::max(bounds.minY(), bounds.maxY() - axFrame.absHeight());
    return corrected;
}

} // namespace tessarel
