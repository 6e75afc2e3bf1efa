#pragma once

#include "platform/qt_x11/overlay/compositor_watch.h"
#include "platform/qt_x11/overlay/x11_overlay_widget.h"
#include "ports/main_queue_port.h"
#include "ports/overlay_port.h"

#include <QRect>
#include <QRegion>

#include <functional>
#include <memory>
#include <vector>

namespace tessarel::qt {

/// The overlay in whichever look the desktop allows at the time.
///
/// The look is chosen when the window comes to the front after it has been out; should the compositor end
/// while the window is shown, the other look takes over. Changes that come close on each other are painted
/// together. The memory of what was shown is given back some time after the window has gone out.
class X11OverlayWindow : public OverlayWindow {
public:
    using Conversion = std::function<Rect(const Rect& screenFrame)>;

    /// At most one repaint in this time.
    static constexpr MainQueuePort::Duration kRepaintInterval = std::chrono::milliseconds(8);
    static constexpr MainQueuePort::Duration kQuietTime = std::chrono::seconds(30);

    /// `desktopPixels` answers the pixels of the desktop, y down, that a rectangle in screen coordinates
    /// covers. `queue` outlives the window.
    X11OverlayWindow(MainQueuePort& queue, Conversion desktopPixels);
    ~X11OverlayWindow() override;

    void setFrame(const Rect& screenFrame) override;
    void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed) override;
    void orderFront() override;
    void orderOut() override;

private:
    [[nodiscard]] X11OverlayWidget::Kind fittingKind();
    void useSurface(X11OverlayWidget::Kind kind);
    void onCompositorGone();
    [[nodiscard]] QRegion extents(const std::vector<Rect>& areas);
    void scheduleRepaint();
    void repaint();
    void scheduleRelease(MainQueuePort::Duration delay);
    void releaseIfQuiet();
    void later(MainQueuePort::Duration delay, void (X11OverlayWindow::*work)());

    MainQueuePort& m_queue;
    Conversion m_desktopPixels;
    QRect m_frame;
    std::vector<OverlayFigure> m_figures;
    std::unique_ptr<CompositorWatch> m_compositor;
    std::unique_ptr<X11OverlayWidget> m_surface; // shown, or the one that was shown last
    bool m_isFront = false;
    QRegion m_changed; // pixels that wait to be painted
    MainQueuePort::TimePoint m_nextRepaint{};
    bool m_repaintScheduled = false;
    MainQueuePort::TimePoint m_quietSince{};
    bool m_releaseScheduled = false;
    std::shared_ptr<X11OverlayWindow*> m_self; // shared with work on the queue, which may outlive us
};

} // namespace tessarel::qt
