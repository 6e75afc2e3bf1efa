// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/qt_x11/overlay/compositor_watch.h"
#include "platform/qt_x11/overlay/stacking_watch.h"
#include "platform/qt_x11/overlay/x11_overlay_widget.h"
#include "ports/desktop/overlay_port.h"
#include "ports/main_queue_port.h"

#include <QColor>
#include <QRect>
#include <QRegion>

#include <functional>
#include <memory>
#include <vector>

namespace tessarel::qt {

/// The overlay window of the X11 desktop, with or without a compositor.
///
/// The look is chosen each time the hidden window is shown. If the compositor exits while the window is
/// visible, the look changes. Changes within a short interval are coalesced into one repaint. The widget and
/// its pixels are freed after the window has been hidden for some time.
///
/// A window that comes to the front is put below again. Another program that raises its own window each time
/// would do so forever: so the window is raised at most `kMostRaises` times in `kRaiseInterval`.
class X11OverlayWindow : public OverlayWindow {
public:
    /// Converts a rectangle in screen coordinates (y up) to pixels of the root window (y down).
    using Conversion = std::function<Rect(const Rect& screenFrame)>;
    /// Returns the accent colour. Called each time the hidden window is shown.
    using Accent = std::function<QColor()>;

    /// The shortest time between two repaints.
    static constexpr MainQueuePort::Duration kRepaintInterval = std::chrono::milliseconds(8);
    /// How long the widget is kept after it was hidden.
    static constexpr MainQueuePort::Duration kQuietTime = std::chrono::seconds(30);

    static constexpr int kMostRaises = 8;
    static constexpr MainQueuePort::Duration kRaiseInterval = std::chrono::seconds(1);

    /// `queue` and everything that the functions use must outlive the window.
    X11OverlayWindow(MainQueuePort& queue, Conversion desktopPixels, Accent accent);
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
    void stayInFront();
    void raiseAgain();
    void scheduleRepaint();
    void repaint();

    MainQueuePort& m_queue;
    Conversion m_desktopPixels;
    Accent m_accent;
    QRect m_frame; // in pixels of the root window
    std::vector<OverlayFigure> m_figures;
    std::unique_ptr<CompositorWatch> m_compositor;
    std::unique_ptr<X11OverlayWidget> m_surface; // the one shown now or last; null after a release
    bool m_isFront = false;
    std::unique_ptr<StackingWatch> m_stacking; // null while hidden
    SubscriptionPtr m_scheduledRaise;          // null when none is pending
    MainQueuePort::TimePoint m_raisesBegan{};  // of the raises in `m_raises`
    int m_raises = 0;                          // because of other windows, since `m_raisesBegan`
    QRegion m_changed;                         // pixels of the window that are due for a repaint
    MainQueuePort::TimePoint m_nextRepaint{};
    SubscriptionPtr m_scheduledRepaint; // null when none is pending
    SubscriptionPtr m_scheduledRelease; // frees the widget after the quiet time; cancelled by a show
};

} // namespace tessarel::qt
