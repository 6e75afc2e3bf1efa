// SPDX-License-Identifier: MIT

#include "engine/window_engine.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace tessarel {

namespace {

/// Returns `value` clamped to [0, 1].
double share(double value) {
    return std::clamp(value, 0.0, 1.0);
}

/// Returns the frame with the same relative position and size in `to` as `axFrame` has in `from`, rounded to
/// whole points. The origin is clamped to `to`, and the size to that of `to`.
Rect transferred(const Rect& axFrame, const Rect& from, const Rect& to) {
    const double x = share((axFrame.minX() - from.minX()) / from.absWidth());
    const double y = share((axFrame.minY() - from.minY()) / from.absHeight());
    const double width = std::min(axFrame.absWidth() / from.absWidth(), 1.0);
    const double height = std::min(axFrame.absHeight() / from.absHeight(), 1.0);
    return {std::round(to.minX() + x * to.absWidth()), std::round(to.minY() + y * to.absHeight()),
            std::round(width * to.absWidth()), std::round(height * to.absHeight())};
}

/// Returns whether `axFrame` has its origin at `origin`, with the tolerance of frames.
bool isAt(const Point& origin, const Rect& axFrame) {
    return std::abs(axFrame.x - origin.x) <= WindowEngine::kTolerance &&
           std::abs(axFrame.y - origin.y) <= WindowEngine::kTolerance;
}

/// Returns the index `offset` steps after `index` in a ring of `count` elements.
std::size_t stepped(std::size_t index, int offset, std::size_t count) {
    const auto size = static_cast<std::ptrdiff_t>(count);
    const auto step = (static_cast<std::ptrdiff_t>(index) + offset) % size;
    return static_cast<std::size_t>((step + size) % size);
}

} // namespace

/// A window that an action applies to.
struct WindowEngine::Target {
    Element window;
    RunningApplication app;
    Rect axFrame;
};

struct WindowEngine::TargetOnScreen : Target {
    Rect axVisible; ///< usable area of its screen
};

WindowEngine::WindowEngine(AX& ax, Geo& geo, DisplaysPort& displays, WorkspacePort& workspace,
                           WindowListPort& windowList, AlertSoundPort& alertSound, Store& store)
    : m_ax(ax), m_geo(geo), m_displays(displays), m_workspace(workspace), m_windowList(windowList),
      m_alertSound(alertSound), m_store(store),
      m_corrections(
          ax.onCorrected([this](const Element& window, const Rect& axFrame) { follow(window, axFrame); })) {}

WindowEngine::WindowKey WindowEngine::key(const Element& window) const {
    return m_ax.key(window);
}

bool WindowEngine::approx(const Rect& a, const Rect& b, double tolerance) {
    const auto near = [&](double first, double second) { return std::abs(first - second) <= tolerance; };
    return near(a.minX(), b.minX()) && near(a.minY(), b.minY()) && near(a.absWidth(), b.absWidth()) &&
           near(a.absHeight(), b.absHeight());
}

bool WindowEngine::isIgnored(const std::optional<RunningApplication>& app) const {
    if (!app || !app->bundleIdentifier)
        return false;
    const auto isListed = [&ignored = m_store.settings.ignoredApps](const std::string& name) {
        return std::find(ignored.begin(), ignored.end(), name) != ignored.end();
    };
    const auto& otherNames = app->otherNames;
    return isListed(*app->bundleIdentifier) || std::any_of(otherNames.begin(), otherNames.end(), isListed);
}

bool WindowEngine::place(const Element& window, ProcessId pid, const Rect& axFrame,
                         const std::optional<Rect>& bounds, const std::optional<Rect>& previous) {
    const WindowKey windowKey = key(window);
    const Request request = newRequest(window, pid, axFrame, bounds);
    const auto current = previous ? previous : request.before;
    auto replaced = m_unread.extract(windowKey); // what is reported from now on does not complete it
    if (!m_ax.setFrame(window, pid, axFrame, bounds)) {
        m_unread.insert(std::move(replaced));
        return false;
    }
    const Request* const unread = replaced ? &replaced.mapped() : nullptr;
    if (current && !isInChain(windowKey, unread, *current))
        m_original[windowKey] = isAwaited(unread, *current) ? unread->axFrame : *current;
    m_lastSnapped[windowKey] = readBack(window, request);
    return true;
}

WindowEngine::Request WindowEngine::newRequest(const Element& window, ProcessId pid, const Rect& axFrame,
                                               const std::optional<Rect>& bounds) const {
    Request request{pid, axFrame, bounds, m_ax.frame(window), {}};
    const auto unread = m_unread.find(key(window));
    if (unread != m_unread.end()) {
        request.replaced = unread->second.replaced;
        request.replaced.push_back(unread->second.axFrame.origin());
    }
    return request;
}

/// Returns whether the desktop has not carried out the request `unread`, if any, for a window that has the
/// frame `axFrame`. The window may still be where an earlier request has put it, with another size.
bool WindowEngine::isAwaited(const Request* unread, const Rect& axFrame) {
    const auto isHere = [&](const Point& origin) { return isAt(origin, axFrame); };
    return unread && ((unread->before && approx(axFrame, *unread->before)) ||
                      std::ranges::any_of(unread->replaced, isHere));
}

/// Returns whether a window with the frame `axFrame` is still where the last placement left it, or, while
/// that is `unread`, where it may leave it or was before. The restore chain then goes on and keeps its first
/// frame.
bool WindowEngine::isInChain(WindowKey windowKey, const Request* unread, const Rect& axFrame) const {
    const auto last = m_lastSnapped.find(windowKey);
    return last != m_lastSnapped.end() &&
           (approx(axFrame, last->second.current) || isAwaited(unread, axFrame) ||
            (unread && isAt(unread->axFrame.origin(), axFrame)));
}

/// Returns where `request` has put the window. The program may have adjusted the frame, so it is read.
WindowEngine::Placed WindowEngine::readBack(const Element& window, const Request& request) {
    const auto placed = m_ax.frame(window);
    if (!placed)
        m_unread.insert_or_assign(key(window), request);
    const Rect& axFrame = placed ? *placed : request.axFrame;
    return {axFrame, axFrame};
}

/// Returns where a window is whose placement or restore could not be read back, and that has now taken
/// `axFrame`. If that is not what was requested, requests it once more, which also pulls the window back into
/// its bounds. If that could not be read back either, pulls it back from `axFrame`.
WindowEngine::Placed WindowEngine::completed(const Element& window, Request request, const Rect& axFrame) {
    if (axFrame == request.axFrame)
        return {axFrame, axFrame};
    if (request.isRepeated) {
        const bool hasRefusedSize = axFrame.origin() == request.axFrame.origin(); // not moved meanwhile
        const auto origin =
            request.bounds && hasRefusedSize ? AX::originInside(*request.bounds, axFrame) : std::nullopt;
        if (!origin)
            return {axFrame, axFrame};
        request.replaced.push_back(request.axFrame.origin());
        request.axFrame = {origin->x, origin->y, axFrame.absWidth(), axFrame.absHeight()};
        request.bounds.reset(); // the last attempt
    }
    m_ax.setFrame(window, request.pid, request.axFrame, request.bounds);
    request.before = axFrame;
    request.isRepeated = true;
    return readBack(window, request);
}

/// Takes up the size that the program itself has chosen after the last placement. A window that has moved
/// along an axis, rather than grown or shrunk there, has been moved by the user, for example by a key of the
/// desktop.
void WindowEngine::follow(const Element& window, const Rect& axFrame) {
    const auto unread = m_unread.extract(key(window));
    const auto last = m_lastSnapped.find(key(window));
    const bool isRestored = last == m_lastSnapped.end();
    if (unread) {
        if (!m_ax.isUsable(window))
            return; // made full screen meanwhile
        const Placed placed = completed(window, unread.mapped(), axFrame);
        if (!isRestored)
            last->second = placed;
        return;
    }
    if (isRestored)
        return;
    // Both edges have moved in one direction.
    const auto moved = [](double low, double high) {
        return std::min(low, high) > kTolerance || std::max(low, high) < -kTolerance;
    };
    const Rect& placed = last->second.placed;
    if (!moved(axFrame.minX() - placed.minX(), axFrame.maxX() - placed.maxX()) &&
        !moved(axFrame.minY() - placed.minY(), axFrame.maxY() - placed.maxY()))
        last->second.current = axFrame;
}

void WindowEngine::remember(const std::optional<std::string>& bundleID, std::size_t zoneIndex) {
    auto& settings = m_store.settings;
    if (!settings.rememberApps || !bundleID)
        return;
    const auto number = static_cast<std::int64_t>(zoneIndex);
    const auto known = settings.appZones.find(*bundleID);
    if (known != settings.appZones.end() && known->second == number)
        return;
    settings.appZones[*bundleID] = number;
    m_store.save();
}

Outcome WindowEngine::snapFocused(const Zone& zone, std::optional<std::size_t> index) {
    const auto focused = targetOnScreen();
    if (!focused)
        return Outcome::NoWindow;
    const Rect& visible = focused->axVisible;
    if (!place(focused->window, focused->app.processIdentifier, m_geo.zoneFrame(zone, visible), visible, {}))
        return Outcome::Refused;
    if (index)
        remember(focused->app.bundleIdentifier, *index);
    return Outcome::Done;
}

Outcome WindowEngine::centerFocused() {
    const auto focused = targetOnScreen();
    if (!focused)
        return Outcome::NoWindow;
    const Rect& visible = focused->axVisible;
    const double width = std::min(focused->axFrame.absWidth(), visible.absWidth());
    const double height = std::min(focused->axFrame.absHeight(), visible.absHeight());
    const Rect centred{std::round(visible.midX() - width * 0.5), std::round(visible.midY() - height * 0.5),
                       width, height};
    return outcomeOf(place(focused->window, focused->app.processIdentifier, centred, visible, {}));
}

Outcome WindowEngine::restoreFocused() {
    const auto focused = usableFocusedWindow();
    if (!focused)
        return Outcome::NoWindow;
    const WindowKey windowKey = key(focused->window);
    const auto original = m_original.find(windowKey);
    if (original == m_original.end()) {
        m_alertSound.beep();
        return Outcome::NothingToRestore;
    }
    // Not through `place`, which would start a new restore chain.
    const ProcessId pid = focused->app.processIdentifier;
    const Request request = newRequest(focused->window, pid, original->second, {});
    auto replaced = m_unread.extract(windowKey); // what is reported from now on does not complete it
    if (!m_ax.setFrame(focused->window, pid, request.axFrame, {})) {
        m_unread.insert(std::move(replaced));
        return Outcome::Refused;
    }
    m_original.erase(original);
    m_lastSnapped.erase(windowKey);
    readBack(focused->window, request);
    return Outcome::Done;
}

Outcome WindowEngine::moveFocusedToDisplay(int offset) {
    const auto focused = target();
    if (!focused)
        return Outcome::NoWindow;
    std::vector<Screen> screens = m_displays.screens();
    std::stable_sort(screens.begin(), screens.end(),
                     [](const Screen& a, const Screen& b) { return a.frame.minX() < b.frame.minX(); });
    const auto own = screens.size() < 2 ? std::nullopt : m_geo.screen(focused->axFrame);
    const auto position = std::find_if(screens.begin(), screens.end(),
                                       [&](const Screen& screen) { return own && screen.id == own->id; });
    if (position == screens.end()) {
        m_alertSound.beep();
        return Outcome::NoOtherDisplay;
    }
    const auto index = static_cast<std::size_t>(position - screens.begin());
    const Rect from = m_geo.axVisible(*own);
    const Rect to = m_geo.axVisible(screens[stepped(index, offset, screens.size())]);
    return outcomeOf(place(focused->window, focused->app.processIdentifier,
                           transferred(focused->axFrame, from, to), to, {}));
}

/// Returns the focused window unless its application is ignored or it may not be moved.
std::optional<FocusedWindow> WindowEngine::usableFocusedWindow() const {
    auto focused = m_ax.focusedWindow();
    if (!focused || isIgnored(focused->app) || !m_ax.isUsable(focused->window))
        return {};
    return focused;
}

std::optional<WindowEngine::Target> WindowEngine::target() const {
    auto focused = usableFocusedWindow();
    if (!focused)
        return {};
    const auto axFrame = m_ax.frame(focused->window);
    if (!axFrame)
        return {};
    return Target{std::move(focused->window), std::move(focused->app), *axFrame};
}

std::optional<WindowEngine::TargetOnScreen> WindowEngine::targetOnScreen() const {
    auto focused = target();
    const auto screen = focused ? m_geo.screen(focused->axFrame) : std::nullopt;
    if (!screen)
        return {};
    return TargetOnScreen{{std::move(*focused)}, m_geo.axVisible(*screen)};
}

} // namespace tessarel
