// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt_x11/overlay/x11_overlay.h"
#include "platform/qt_x11/overlay/x11_overlay_widget.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "support/overlay_figures.h"
#include "support/x11/child_process.h"
#include "support/x11/observer.h"
#include "support/x11/qt_barrier.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QRect>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::qt {

/// A desktop with an overlay, observed through the X server. The overlay's frames are in pixels of the root
/// window.
class OverlayDesktopTest : public testing::Test {
protected:
    /// `scaleFactor` is the value of QT_SCALE_FACTOR; empty leaves it unset.
    explicit OverlayDesktopTest(const std::string& scaleFactor = {});
    ~OverlayDesktopTest() override;

    void startCompositor();
    void stopCompositor();

    /// Shows the figures `list` on `rootFrame` and waits until the server has processed it.
    void show(const Rect& rootFrame, const std::vector<OverlayFigure>& list);
    /// Replaces the figures of the shown overlay by `list`.
    void change(const std::vector<OverlayFigure>& list);
    void hide();
    /// Waits until Qt and the server have processed all pending events and requests.
    void turn();
    /// Waits until Qt has handled all pending events, the work that is due at this moment is done, and the
    /// server has processed the requests.
    void catchUp();
    /// Waits until `holds` returns true, while Qt's event loop runs.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& holds);

    /// Returns the contents of the screen.
    [[nodiscard]] QImage screen(const QRect& area);
    [[nodiscard]] QColor screenPixel(int x, int y);
    /// Like screen(), once a compositor has painted everything drawn so far.
    [[nodiscard]] QImage settledScreen(const QRect& area);
    /// Waits until a pixel of the screen has `color`, within a small tolerance.
    testing::AssertionResult becomes(int x, int y, const QColor& color);

    /// Returns the visible overlay widget, or null.
    [[nodiscard]] static X11OverlayWidget* surface();
    [[nodiscard]] static xcb_window_t surfaceWindow();

    static x11test::XServer& server();
    x11test::Observer observer{server().display()};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};

private:
    int m_argumentCount = 1;
    std::array<char, 5> m_programName{"test"};
    std::array<char*, 2> m_arguments{m_programName.data(), nullptr};
    std::optional<QApplication> m_application;
    std::optional<x11test::QtBarrier> m_barrier;
    std::unique_ptr<x11test::ChildProcess> m_compositor;

protected:
    X11Overlay overlay{queue, [](const Rect& rootFrame) { return rootFrame; }};
    std::unique_ptr<OverlayWindow> window = overlay.createWindow();
    std::vector<Rect> shownBounds;
};

} // namespace tessarel::qt
