// SPDX-License-Identifier: MIT

#include "platform/qt_wayland/layer_overlay.h"

#include "platform/qt_wayland/compositor_connection.h"
#include "platform/qt_wayland/layer_surface.h"

#include <QPoint>

#include <cmath>
#include <optional>
#include <utility>

namespace tessarel::qt {

/// An overlay window, which has a surface only while it is shown.
class LayerOverlay::Window : public OverlayWindow {
public:
    Window(QtMainQueue& queue, System system)
        : m_system(std::move(system)), m_connection(queue),
          m_changes(m_connection.onChanged([this] { showWhenReady(); })) {}

    void setFrame(const Rect& screenFrame) override {
        const Rect frame = m_system.place(screenFrame);
        m_corner = QPoint(static_cast<int>(std::lround(frame.x)), static_cast<int>(std::lround(frame.y)));
        m_surface.reset();
        showWhenReady();
    }

    void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed) override {
        m_figures = figures;
        if (m_surface)
            m_surface->setFigures(figures, changed);
    }

    void orderFront() override {
        m_isShown = true;
        showWhenReady();
    }

    void orderOut() override {
        m_isShown = false;
        m_surface.reset();
    }

private:
    /// Creates the surface as soon as the compositor has announced what it takes.
    void showWhenReady() {
        if (!m_connection.isReady())
            m_surface.reset();
        const Output* const output =
            m_isShown && m_connection.isReady() ? m_connection.outputAt(m_corner) : nullptr;
        if (output != nullptr && !m_surface)
            m_surface.emplace(m_connection, *output, m_system.accent(), m_figures);
    }

    System m_system;
    CompositorConnection m_connection;
    QPoint m_corner; ///< top-left corner of the display, in the compositor's coordinates
    std::vector<OverlayFigure> m_figures;
    bool m_isShown = false;
    std::optional<LayerSurface> m_surface;
    SubscriptionPtr m_changes;
};

std::unique_ptr<OverlayWindow> LayerOverlay::createWindow() {
    return std::make_unique<Window>(m_queue, m_system);
}

} // namespace tessarel::qt
