// SPDX-License-Identifier: MIT

#include "platform/wayland/mirror.h"

#include <algorithm>
#include <utility>

namespace tessarel::wayland {

namespace {

/// Returns the process that a window gets whose own one the compositor does not know, so that it can be moved
/// like any other.
ProcessId standInProcess(WindowId window) {
    constexpr ProcessId kHighest = 1 << 22; // of the kernel's own process ids
    return kHighest + static_cast<ProcessId>(window);
}

bool isUnderWay(const UserMove& step) {
    return step.phase == UserMove::Phase::Started || step.phase == UserMove::Phase::Stepped;
}

/// Returns whether one of the displays shows nothing that the other one does not show.
bool areMirrors(const Rect& a, const Rect& b) {
    const Rect common = a.intersection(b);
    return common == a || common == b;
}

} // namespace

void Mirror::reset(const Snapshot& snapshot) {
    setDisplays(snapshot.displays);
    removeUnlisted(snapshot);
    std::vector<std::string> order;
    for (const WindowState& window : snapshot.windows) {
        update(window);
        order.push_back(window.name);
    }
    restack(order);
    activate(snapshot.active);
    if (!std::exchange(m_isReady, true))
        note([this] { m_ready.send(); });
}

void Mirror::removeUnlisted(const Snapshot& snapshot) {
    std::vector<std::string> gone;
    for (const auto& [name, id] : m_ids) {
        const auto isThis = [&name = name](const WindowState& window) { return window.name == name; };
        if (std::none_of(snapshot.windows.begin(), snapshot.windows.end(), isThis))
            gone.push_back(name);
    }
    for (const std::string& name : gone)
        remove(name);
}

void Mirror::update(const WindowState& window) {
    const auto [known, isNew] = m_ids.try_emplace(window.name, m_lastId + 1);
    const WindowId id = known->second;
    WindowState state = window;
    if (state.pid <= 0)
        state.pid = standInProcess(id);
    if (!isNew) {
        const Rect before = std::exchange(m_windows[id], state).frame;
        ++m_knownFrames[id];
        if (before != window.frame)
            note([this, id, frame = window.frame] { m_frameChanged.send(id, frame); });
        return;
    }
    m_lastId = id;
    m_windows[id] = state;
    m_backToFront.push_back(id);
    if (m_isReady)
        note([this, id] { m_opened.send(id); });
}

void Mirror::remove(const std::string& name) {
    const auto known = m_ids.find(name);
    if (known == m_ids.end())
        return;
    const WindowId id = known->second;
    WindowState last = std::move(m_windows[id]);
    m_windows.erase(id);
    m_knownFrames.erase(id);
    m_ids.erase(known);
    std::erase(m_backToFront, id);
    if (m_active == id)
        m_active = kNoWindow;
    if (m_userMove && m_userMove->window == id) { // its end is reported for an unknown window, if at all
        m_userMove->phase = UserMove::Phase::Cancelled;
        note([this, step = *m_userMove] { sendMove(step); });
        m_userMove.reset();
    }
    note([this, id, last = std::move(last)] { m_closed.send(id, last); });
}

void Mirror::restack(const std::vector<std::string>& names) {
    std::vector<WindowId> order;
    for (const std::string& name : names) {
        const WindowId id = named(name);
        if (id != kNoWindow && std::find(order.begin(), order.end(), id) == order.end())
            order.push_back(id);
    }
    // Windows that the compositor has not listed stay on top, where `update` has put them.
    for (const WindowId id : m_backToFront) {
        if (std::find(order.begin(), order.end(), id) == order.end())
            order.push_back(id);
    }
    m_backToFront = std::move(order);
}

void Mirror::activate(const std::string& name) {
    const WindowId id = named(name);
    if (std::exchange(m_active, id) != id)
        note([this] { m_activated.send(); });
}

void Mirror::setDisplays(const std::vector<DisplayState>& displays) {
    m_displays.clear();
    for (const DisplayState& display : displays) {
        const auto isMirrored = [&](const DisplayState& earlier) {
            return areMirrors(earlier.frame, display.frame);
        };
        if (std::ranges::none_of(m_displays, isMirrored))
            m_displays.push_back(display);
    }
}

void Mirror::setFrame(const std::string& name, const Rect& frame) {
    const auto window = m_windows.find(named(name));
    if (window == m_windows.end())
        return;
    ++m_knownFrames[window->first];
    if (std::exchange(window->second.frame, frame) == frame)
        return;
    note([this, id = window->first, frame] { m_frameChanged.send(id, frame); });
}

void Mirror::settle(const std::string& name, const Rect& frame) {
    const WindowState* const window = find(named(name));
    const bool isUnchanged = window != nullptr && window->frame == frame;
    setFrame(name, frame);
    if (isUnchanged)
        note([this, id = named(name), frame] { m_frameChanged.send(id, frame); });
}

void Mirror::replace(WindowId window) {
    note([this, window] { m_replaced.send(window); });
}

void Mirror::move(UserMove::Phase phase, const std::string& name, bool isMove, const Point& pointer,
                  const Rect& frame) {
    const WindowId id = named(name);
    if (id == kNoWindow)
        return;
    const UserMove step{phase, id, isMove, pointer, frame};
    m_userMove.reset();
    if (isUnderWay(step))
        m_userMove = step;
    note([this, step, known = m_knownFrames[id]] {
        const auto window = m_windows.find(step.window);
        if (window != m_windows.end() && m_knownFrames[step.window] == known)
            window->second.frame = step.frame;
        sendMove(step);
    });
}

void Mirror::sendMove(const UserMove& step) {
    m_movedByUser = isUnderWay(step) ? step.window : kNoWindow;
    m_moved.send(step);
}

const WindowState* Mirror::find(WindowId window) const {
    const auto known = m_windows.find(window);
    return known == m_windows.end() ? nullptr : &known->second;
}

WindowId Mirror::named(const std::string& name) const {
    const auto known = m_ids.find(name);
    return known == m_ids.end() ? kNoWindow : known->second;
}

std::vector<WindowId> Mirror::frontToBack() const {
    return {m_backToFront.rbegin(), m_backToFront.rend()};
}

Rect Mirror::primary() const {
    return m_displays.empty() ? Rect() : m_displays.front().frame;
}

/// A handler may wait, and so cause further reports.
void Mirror::deliver() {
    while (!m_notices.empty()) {
        const auto notice = std::move(m_notices.front());
        m_notices.pop_front();
        notice();
    }
    m_delivered.send();
}

SubscriptionPtr Mirror::onDelivered(std::function<void()> delivered) {
    return m_delivered.connect(std::move(delivered));
}

SubscriptionPtr Mirror::onReady(std::function<void()> ready) {
    return m_ready.connect(std::move(ready));
}

SubscriptionPtr Mirror::onOpened(std::function<void(WindowId)> opened) {
    return m_opened.connect(std::move(opened));
}

SubscriptionPtr Mirror::onClosed(std::function<void(WindowId, const WindowState&)> closed) {
    return m_closed.connect(std::move(closed));
}

SubscriptionPtr Mirror::onActivated(std::function<void()> activated) {
    return m_activated.connect(std::move(activated));
}

SubscriptionPtr Mirror::onFrameChanged(std::function<void(WindowId, const Rect&)> changed) {
    return m_frameChanged.connect(std::move(changed));
}

SubscriptionPtr Mirror::onReplaced(std::function<void(WindowId)> replaced) {
    return m_replaced.connect(std::move(replaced));
}

SubscriptionPtr Mirror::onMove(std::function<void(const UserMove&)> moved) {
    return m_moved.connect(std::move(moved));
}

} // namespace tessarel::wayland
