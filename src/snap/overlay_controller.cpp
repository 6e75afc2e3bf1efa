// SPDX-License-Identifier: MIT

#include "snap/overlay_controller.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tessarel {

namespace {

/// Returns the areas to repaint when `after` replaces `before`.
std::vector<Rect> changes(const std::vector<OverlayFigure>& before, const std::vector<OverlayFigure>& after) {
    std::vector<Rect> changed;
    for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
        const OverlayFigure* old = i < before.size() ? &before[i] : nullptr;
        const OverlayFigure* now = i < after.size() ? &after[i] : nullptr;
        if (old && now && *old == *now)
            continue;
        if (old)
            changed.push_back(old->bounds);
        if (now && !(old && old->bounds == now->bounds))
            changed.push_back(now->bounds);
    }
    return changed;
}

} // namespace

OverlayController::OverlayController(OverlayPort& port) : m_port(port) {}

void OverlayController::show(const Screens& screens, const Screen& screen, std::vector<OverlayItem> items) {
    const Point origin = screens.axFrame(screen).origin();
    // Screen coordinates begin at the bottom of the primary display. When its height changes, the same frame
    // is another place on the desktop, and only the origin shows it.
    const bool isPlaced = m_isShown && m_screenFrame == screen.frame && m_view.origin == origin;
    if (isPlaced && m_view.items == items)
        return;
    if (!m_window)
        m_window = m_port.createWindow();
    if (!isPlaced)
        m_window->setFrame(screen.frame);
    m_screenFrame = screen.frame;
    m_view.origin = origin;
    m_view.items = std::move(items);
    draw();
    m_window->orderFront();
    m_isShown = true;
}

void OverlayController::hide() {
    if (!m_isShown)
        return;
    m_isShown = false;
    m_window->orderOut();
}

void OverlayController::draw() {
    std::vector<OverlayFigure> figures = m_view.draw();
    const std::vector<Rect> changed = changes(m_figures, figures);
    m_figures = std::move(figures);
    if (!changed.empty())
        m_window->setFigures(m_figures, changed);
}

} // namespace tessarel
