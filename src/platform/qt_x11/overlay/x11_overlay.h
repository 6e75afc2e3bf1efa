// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"
#include "ports/main_queue_port.h"
#include "qt_values/color.h"

#include <QColor>

#include <functional>
#include <memory>

namespace tessarel::qt {

/// Creates the overlay windows of the X11 desktop. Requires the application object as soon as a window is
/// shown.
class X11Overlay : public OverlayPort {
public:
    /// Converts a rectangle in screen coordinates (y up) to pixels of the root window (y down).
    using Conversion = std::function<Rect(const Rect& screenFrame)>;

    /// Returns the accent colour. Called each time a hidden window is shown.
    using Accent = std::function<QColor()>;

    /// `queue` and everything that the functions use must outlive the overlay and its windows.
    X11Overlay(
        MainQueuePort& queue, Conversion desktopPixels, Accent accent = [] { return QColor(kAccent); });

    /// Returns a hidden window. The X11 window itself is created when it is first shown.
    [[nodiscard]] std::unique_ptr<OverlayWindow> createWindow() override;

    /// Takes a few round trips on Qt's connection.
    [[nodiscard]] bool showsOutlines() const override;

private:
    MainQueuePort& m_queue;
    Conversion m_desktopPixels;
    Accent m_accent;
};

} // namespace tessarel::qt
