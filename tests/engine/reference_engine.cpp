// SPDX-License-Identifier: MIT

#include "engine/reference_engine.h"

#include "engine/reference_rect.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessarel {

using namespace reference;

namespace {

constexpr double kSmallest = 40;

double share(double part, double whole) {
    return std::min(std::max(part / whole, 0.0), 1.0);
}

bool isAtCorner(const Rect& frame, const Rect& place) {
    return std::abs(frame.x - place.x) <= 3 && std::abs(frame.y - place.y) <= 3;
}

} // namespace

ReferenceEngine::ReferenceEngine(Ports ports)
    : m_ports(std::move(ports)),
      m_corrections(m_ports.accessibility.onCorrected(
          [this](const Element& window, const Rect& frame) { corrected(window, frame); })) {}

void ReferenceEngine::beep(std::string_view why) {
    took(why);
    m_ports.alertSound.beep();
}

// Coordinates

Rect ReferenceEngine::flipped(const Rect& rect) {
    const auto screens = m_ports.displays.screens();
    const double height = screens.empty() ? 0 : high(screens[0].frame);
    return {left(rect), height - bottom(rect), wide(rect), high(rect)};
}

std::optional<Screen> ReferenceEngine::screenOf(const Rect& frame) {
    const auto screens = m_ports.displays.screens();
    if (screens.empty()) {
        took("screen of a window: no display");
        return m_ports.displays.mainScreen();
    }
    double bestArea = -1;
    std::optional<Screen> best;
    for (const Screen& screen : screens) {
        const double area = sharedArea(flipped(screen.frame), frame);
        if (bestArea < area) {
            bestArea = area;
            best = screen;
        }
    }
    took(bestArea > 0 ? "screen of a window: largest share" : "screen of a window: off screen");
    return best ? best : m_ports.displays.mainScreen();
}

Rect ReferenceEngine::zoneFrame(const Zone& zone, const Rect& area) {
    const double half = settings.gap * 0.5;
    const Rect outer = shrunk(area, settings.margin - half);
    const Rect whole{left(outer) + wide(outer) * (zone.x / 100), top(outer) + high(outer) * (zone.y / 100),
                     wide(outer) * (zone.w / 100), high(outer) * (zone.h / 100)};
    const Rect inner = shrunk(whole, half);
    took(isNothing(inner) ? "zone: nothing left" : "zone: something left");
    if (std::round(wide(inner)) < kSmallest || std::round(high(inner)) < kSmallest)
        took("zone: too small");
    return {std::round(left(inner)), std::round(top(inner)), std::max(std::round(wide(inner)), kSmallest),
            std::max(std::round(high(inner)), kSmallest)};
}

// Other programs' windows

std::optional<Point> ReferenceEngine::point(const Element& element, std::string_view attribute) {
    const auto value = m_ports.accessibility.copyAttribute(element, attribute);
    if (value && std::holds_alternative<Point>(*value))
        return std::get<Point>(*value);
    return {};
}

std::optional<Size> ReferenceEngine::size(const Element& element, std::string_view attribute) {
    const auto value = m_ports.accessibility.copyAttribute(element, attribute);
    if (value && std::holds_alternative<Size>(*value))
        return std::get<Size>(*value);
    return {};
}

std::optional<bool> ReferenceEngine::truth(const Element& element, std::string_view attribute) {
    const auto value = m_ports.accessibility.copyAttribute(element, attribute);
    if (value && std::holds_alternative<bool>(*value))
        return std::get<bool>(*value);
    if (value && std::holds_alternative<double>(*value))
        return std::get<double>(*value) != 0;
    return {};
}

std::optional<Rect> ReferenceEngine::frameOf(const Element& window) {
    const auto position = point(window, "AXPosition");
    const auto extent = size(window, "AXSize");
    if (position && extent)
        return Rect{position->x, position->y, extent->width, extent->height};
    took("frame: unreadable");
    return {};
}

std::vector<Element> ReferenceEngine::windowsOf(ProcessId pid) {
    const auto value =
        m_ports.accessibility.copyAttribute(m_ports.accessibility.application(pid), "AXWindows");
    if (value && std::holds_alternative<std::vector<Element>>(*value))
        return std::get<std::vector<Element>>(*value);
    took("windows of an application: unreadable");
    return {};
}

std::optional<ReferenceEngine::Focused> ReferenceEngine::focusedWindow() {
    const auto application = m_ports.workspace.frontmostApplication();
    if (!application) {
        took("focused window: no application in front");
        return {};
    }
    if (application->processIdentifier == m_ports.workspace.ownProcessIdentifier()) {
        took("focused window: this program in front");
        return {};
    }
    const auto value = m_ports.accessibility.copyAttribute(
        m_ports.accessibility.application(application->processIdentifier), "AXFocusedWindow");
    if (value && std::holds_alternative<Element>(*value))
        return Focused{std::get<Element>(*value), *application};
    took("focused window: none");
    return {};
}

bool ReferenceEngine::isUsable(const Element& window) {
    const auto role = m_ports.accessibility.copyAttribute(window, "AXRole");
    if (role && std::holds_alternative<std::string>(*role) && std::get<std::string>(*role) != "AXWindow") {
        took("unusable: role");
        return false;
    }
    if (truth(window, "AXMinimized") == true) {
        took("unusable: minimised");
        return false;
    }
    if (truth(window, "AXFullScreen") == true) {
        took("unusable: full screen");
        return false;
    }
    return true;
}

bool ReferenceEngine::isIgnored(const std::optional<RunningApplication>& application) const {
    if (!application || !application->bundleIdentifier)
        return false;
    const auto& ignored = settings.ignoredApps;
    return std::find(ignored.begin(), ignored.end(), *application->bundleIdentifier) != ignored.end();
}

void ReferenceEngine::setFrame(const Element& window, ProcessId pid, const Rect& frame,
                               const std::optional<Rect>& within) {
    const Element application = m_ports.accessibility.application(pid);
    if (truth(application, "AXEnhancedUserInterface") == true) {
        took("set frame: enhanced interface on");
        m_ports.accessibility.setAttribute(application, "AXEnhancedUserInterface", false);
        writeFrame(window, frame, within);
        m_ports.accessibility.setAttribute(application, "AXEnhancedUserInterface", true);
    } else {
        writeFrame(window, frame, within);
    }
}

void ReferenceEngine::writeFrame(const Element& window, const Rect& frame,
                                 const std::optional<Rect>& within) {
    if (!m_ports.accessibility.canExpress(frame)) {
        took("set frame: cannot be expressed");
        return;
    }
    const AttributeValue size = Size{frame.width, frame.height};
    m_ports.accessibility.setAttribute(window, "AXSize", size);
    m_ports.accessibility.setAttribute(window, "AXPosition", Point{frame.x, frame.y});
    m_ports.accessibility.setAttribute(window, "AXSize", size);
    if (!within)
        return;
    const auto now = frameOf(window);
    if (!now) {
        took("set frame: unreadable afterwards");
        return;
    }
    Point corrected{now->x, now->y};
    const bool tooFarRight = right(*now) > right(*within) + 1;
    const bool tooFarDown = bottom(*now) > bottom(*within) + 1;
    if (tooFarRight) {
        took("set frame: out at the right");
        corrected.x = std::max(left(*within), right(*within) - wide(*now));
    }
    if (tooFarDown) {
        took("set frame: out at the bottom");
        corrected.y = std::max(top(*within), bottom(*within) - high(*now));
    }
    if (right(*now) == right(*within) + 1 || bottom(*now) == bottom(*within) + 1)
        took("set frame: out by one point");
    if (tooFarRight || tooFarDown)
        m_ports.accessibility.setAttribute(window, "AXPosition", corrected);
}

// Actions

void ReferenceEngine::place(const Element& window, ProcessId pid, const Rect& frame,
                            const std::optional<Rect>& within, const std::optional<Rect>& previous) {
    const std::uintptr_t key = m_ports.accessibility.key(window);
    const std::optional<Rect> now = frameOf(window);
    std::optional<Rect> current = previous ? previous : now;
    const auto restore = m_lateRestores.find(key);
    if (current && restore != m_lateRestores.end() &&
        ((restore->second.from && isNear(*current, *restore->second.from, 3)) ||
         isAtEarlierCorner(key, *current))) {
        took("place: instead of a late restore");
        current = restore->second.to; // where the window would be by now
    }
    if (current) {
        const auto& places = m_ownPlaces[key];
        bool unmoved = std::any_of(places.begin(), places.end(),
                                   [&](const Rect& place) { return isNear(*current, place, 3); });
        if (!unmoved && m_late.contains(key) && isAtCorner(*current, m_late[key].frame)) {
            took("place: chain goes on after a late placement without its size");
            unmoved = true;
        } else if (!unmoved && m_late.contains(key) && isAtEarlierCorner(key, *current)) {
            took("place: chain goes on after an earlier late placement");
            unmoved = true;
        }
        took(unmoved ? "place: chain goes on" : "place: chain begins");
        if (unmoved && m_late.contains(key))
            took("place: chain goes on after a late placement");
        if (unmoved && m_late.contains(key) && m_late[key].droppedFrom &&
            !isNear(*current, *m_late[key].droppedFrom, 3) && !isNear(*current, m_late[key].frame, 3))
            took("place: chain goes on after a late drop");
        if (!unmoved)
            m_original[key] = *current;
    } else {
        took("place: unreadable before");
    }
    setFrame(window, pid, frame, within);
    noteFrame(window, {pid, frame, within, 1, previous}, now);
}

void ReferenceEngine::noteFrame(const Element& window, const Late& requested,
                                const std::optional<Rect>& before) {
    const std::uintptr_t key = m_ports.accessibility.key(window);
    m_lastSnapped.erase(key);
    replaceLate(key);
    if (const auto after = frameOf(window)) {
        m_lastSnapped[key] = *after;
        m_ownPlaces[key] = {*after};
        m_replaced.erase(key);
        return;
    }
    took("place: unreadable after");
    m_late[key] = requested;
    m_ownPlaces[key] = {requested.frame};
    if (before)
        m_ownPlaces[key].push_back(*before);
}

/// Keeps a late placement or restore as an earlier one.
void ReferenceEngine::replaceLate(std::uintptr_t key) {
    if (m_late.contains(key))
        m_replaced[key].push_back(m_late[key].frame);
    if (m_lateRestores.contains(key))
        m_replaced[key].push_back(m_lateRestores[key].to);
    m_late.erase(key);
    m_lateRestores.erase(key);
}

bool ReferenceEngine::isAtEarlierCorner(std::uintptr_t key, const Rect& frame) {
    const auto& replaced = m_replaced[key];
    return std::any_of(replaced.begin(), replaced.end(),
                       [&](const Rect& place) { return isAtCorner(frame, place); });
}

void ReferenceEngine::corrected(const Element& window, const Rect& frame) {
    const std::uintptr_t key = m_ports.accessibility.key(window);
    if (m_lateRestores.contains(key)) {
        completeRestore(window, m_lateRestores[key], frame);
    } else if (m_late.contains(key) && !isUsable(window)) {
        took("late: unusable by then");
        m_ownPlaces[key] = {m_late[key].frame};
        m_lastSnapped[key] = m_late[key].frame;
        m_late.erase(key);
        m_replaced.erase(key);
    } else if (m_late.contains(key)) {
        complete(window, m_late[key], frame);
    } else if (m_lastSnapped.contains(key)) {
        const Rect& placed = m_lastSnapped[key];
        const double shifts[] = {left(frame) - left(placed), right(frame) - right(placed),
                                 top(frame) - top(placed), bottom(frame) - bottom(placed)};
        const bool isMoved = (shifts[0] > 3 && shifts[1] > 3) || (shifts[0] < -3 && shifts[1] < -3) ||
                             (shifts[2] > 3 && shifts[3] > 3) || (shifts[2] < -3 && shifts[3] < -3);
        took(isMoved ? "correction: move" : "correction: growth");
        if (!isMoved)
            m_ownPlaces[key] = {frame};
    } else {
        took("correction: not placed");
    }
}

void ReferenceEngine::complete(const Element& window, Late late, const Rect& frame) {
    const std::uintptr_t key = m_ports.accessibility.key(window);
    if (frame != late.frame && late.requests == 1) {
        took("late: requested again");
        setFrame(window, late.pid, late.frame, late.within);
        late.requests = 2;
        noteFrame(window, late, frame);
        return;
    }
    const bool overflows =
        late.within && (right(frame) > right(*late.within) + 1 || bottom(frame) > bottom(*late.within) + 1);
    if (frame != late.frame && late.requests == 2 && overflows && left(frame) == left(late.frame) &&
        top(frame) == top(late.frame)) {
        took("late: pulled back");
        Rect pulled{left(frame), top(frame), wide(frame), high(frame)};
        if (right(frame) > right(*late.within) + 1)
            pulled.x = std::max(left(*late.within), right(*late.within) - wide(frame));
        if (bottom(frame) > bottom(*late.within) + 1)
            pulled.y = std::max(top(*late.within), bottom(*late.within) - high(frame));
        setFrame(window, late.pid, pulled, {});
        noteFrame(window, {late.pid, pulled, {}, 3}, frame);
        return;
    }
    took(frame == late.frame ? "late: as requested" : "late: twice");
    m_late.erase(key);
    m_replaced.erase(key);
    m_lastSnapped[key] = frame;
    m_ownPlaces[key] = {frame};
}

void ReferenceEngine::completeRestore(const Element& window, LateRestore restore, const Rect& frame) {
    const std::uintptr_t key = m_ports.accessibility.key(window);
    m_lateRestores.erase(key);
    const bool usable = isUsable(window);
    if (!usable || frame == restore.to || restore.requests == 2) {
        took(!usable ? "late restore: unusable by then" : "late restore: done");
        m_replaced.erase(key);
        return;
    }
    took("late restore: requested again");
    setFrame(window, restore.pid, restore.to, {});
    restore.from = frame;
    restore.requests = 2;
    if (frameOf(window))
        m_replaced.erase(key);
    else
        m_lateRestores[key] = restore;
}

std::optional<ReferenceEngine::Focused> ReferenceEngine::focusedUsableWindow() {
    auto focused = focusedWindow();
    if (!focused)
        return {};
    if (isIgnored(focused->application)) {
        took("focused window: ignored");
        return {};
    }
    if (!isUsable(focused->window))
        return {};
    return focused;
}

void ReferenceEngine::snapFocused(const Zone& zone, std::optional<int> zoneNumber) {
    const auto focused = focusedUsableWindow();
    if (!focused)
        return;
    const auto frame = frameOf(focused->window);
    if (!frame)
        return;
    const auto screen = screenOf(*frame);
    if (!screen) {
        took("snap: no screen");
        return;
    }
    const Rect area = flipped(screen->visibleFrame);
    took(zoneNumber ? "snap: numbered zone" : "snap: fixed zone");
    place(focused->window, focused->application.processIdentifier, zoneFrame(zone, area), area, {});
    if (zoneNumber)
        remember(focused->application.bundleIdentifier, *zoneNumber);
}

void ReferenceEngine::centerFocused() {
    const auto focused = focusedUsableWindow();
    if (!focused)
        return;
    const auto frame = frameOf(focused->window);
    if (!frame)
        return;
    const auto screen = screenOf(*frame);
    if (!screen) {
        took("center: no screen");
        return;
    }
    const Rect area = flipped(screen->visibleFrame);
    const double width = std::min(wide(*frame), wide(area));
    const double height = std::min(high(*frame), high(area));
    const double midX = left(area) + wide(area) * 0.5;
    const double midY = top(area) + high(area) * 0.5;
    took(width < wide(*frame) || height < high(*frame) ? "center: larger than the area" : "center: fits");
    const Rect centred{std::round(midX - width * 0.5), std::round(midY - height * 0.5), width, height};
    place(focused->window, focused->application.processIdentifier, centred, area, {});
}

void ReferenceEngine::restoreFocused() {
    const auto focused = focusedUsableWindow();
    if (!focused)
        return;
    const std::uintptr_t key = m_ports.accessibility.key(focused->window);
    if (!m_original.contains(key)) {
        beep("restore: nothing remembered");
        return;
    }
    took("restore: back");
    const std::optional<Rect> from = frameOf(focused->window);
    const Rect to = m_original[key];
    setFrame(focused->window, focused->application.processIdentifier, to, {});
    replaceLate(key);
    if (frameOf(focused->window)) {
        m_replaced.erase(key);
    } else {
        took("restore: late");
        m_lateRestores[key] = {focused->application.processIdentifier, from, to};
    }
    m_original.erase(key);
    m_lastSnapped.erase(key);
    m_ownPlaces.erase(key);
}

void ReferenceEngine::moveFocused(int step) {
    const auto focused = focusedUsableWindow();
    if (!focused)
        return;
    const auto frame = frameOf(focused->window);
    if (!frame)
        return;
    auto screens = m_ports.displays.screens();
    std::stable_sort(screens.begin(), screens.end(),
                     [](const Screen& a, const Screen& b) { return left(a.frame) < left(b.frame); });
    const int count = static_cast<int>(screens.size());
    if (count < 2) {
        beep("move: fewer than two displays");
        return;
    }
    const auto screen = screenOf(*frame);
    int here = -1;
    for (int i = 0; screen && i < count; ++i) {
        if (screens[static_cast<std::size_t>(i)].id == screen->id)
            here = i;
    }
    if (here < 0) {
        m_ports.alertSound.beep(); // cannot happen: the screen is one of those that were sorted
        return;
    }
    took(here + step < 0 || here + step >= count ? "move: wraps" : "move: neighbour");
    const Screen& target = screens[static_cast<std::size_t>((here + step + count) % count)];
    const Rect from = flipped(screen->visibleFrame);
    const Rect to = flipped(target.visibleFrame);
    const double x = share(left(*frame) - left(from), wide(from));
    const double y = share(top(*frame) - top(from), high(from));
    const double width = std::min(wide(*frame) / wide(from), 1.0);
    const double height = std::min(high(*frame) / high(from), 1.0);
    const Rect moved{std::round(left(to) + x * wide(to)), std::round(top(to) + y * high(to)),
                     std::round(width * wide(to)), std::round(height * high(to))};
    place(focused->window, focused->application.processIdentifier, moved, to, {});
}

void ReferenceEngine::remember(const std::optional<std::string>& bundleIdentifier, int zoneNumber) {
    if (!settings.rememberApps) {
        took("remember: off");
        return;
    }
    if (!bundleIdentifier) {
        took("remember: nameless application");
        return;
    }
    const auto entry = settings.appZones.find(*bundleIdentifier);
    if (entry != settings.appZones.end() && entry->second == zoneNumber) {
        took("remember: already");
        return;
    }
    took("remember: saved");
    settings.appZones[*bundleIdentifier] = zoneNumber;
    m_ports.save(settings);
}

} // namespace tessarel
