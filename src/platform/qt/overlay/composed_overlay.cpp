// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/composed_overlay.h"

#include "model/subscription.h"
#include "platform/qt/overlay/composed_overlay_widget.h"
#include "platform/qt/overlay/overlay_pixels.h"

#include <QRect>

#include <memory>
#include <utility>
#include <vector>

namespace tessarel::qt {

/// An overlay window that creates its surface when it is shown and frees it when it has been hidden for
/// `kQuietTime`.
class ComposedOverlay::Window : public OverlayWindow {
public:
    Window(MainQueuePort& queue, System system) : m_queue(queue), m_system(std::move(system)) {}

    void setFrame(const Rect& screenFrame) override {
        m_frame = pixels(m_system.place(screenFrame));
        if (m_surface)
            m_surface->setGeometry(m_frame);
    }

    void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed) override {
        m_figures = figures;
        if (m_surface)
            m_surface->setFigures(figures, changed);
    }

    void orderFront() override {
        m_scheduledRelease.reset();
        if (!m_surface)
            makeSurface();
        if (!m_surface->isVisible())
            m_surface->setAccent(m_system.accent());
        m_surface->show();
        m_system.orderFront(*m_surface);
    }

    void orderOut() override {
        if (!m_surface || !m_surface->isVisible())
            return;
        m_surface->hide();
        m_scheduledRelease = m_queue.asyncAfter(kQuietTime, [this] { m_surface.reset(); });
    }

private:
    void makeSurface() {
        m_surface = std::make_unique<ComposedOverlayWidget>();
        m_system.prepare(*m_surface);
        m_surface->setGeometry(m_frame);
        m_surface->setFigures(m_figures, {});
    }

    MainQueuePort& m_queue;
    System m_system;
    QRect m_frame;
    std::vector<OverlayFigure> m_figures;
    /// Null before the window is first shown, and after the quiet time.
    std::unique_ptr<ComposedOverlayWidget> m_surface;
    /// Frees the surface after the quiet time. Cancelled when the window is shown again.
    SubscriptionPtr m_scheduledRelease;
};

ComposedOverlay::ComposedOverlay(MainQueuePort& queue, System system)
    : m_queue(queue), m_system(std::move(system)) {}

std::unique_ptr<OverlayWindow> ComposedOverlay::createWindow() {
    return std::make_unique<Window>(m_queue, m_system);
}

} // namespace tessarel::qt
