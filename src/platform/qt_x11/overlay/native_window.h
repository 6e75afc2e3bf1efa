// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>
#include <QRegion>

class QWidget;

namespace tessarel::qt {

// Qt's own functions take device-independent units and are not exact to the pixel at a fractional scale
// factor. These functions therefore act on the X11 window. Where Qt does not run on X11, they fall back to
// Qt.

/// Moves and resizes the window of `widget` to `frame`, in pixels of the root window, y down. The widget need
/// not be shown. The window may become a few pixels larger at the right and bottom, where Qt's rounding would
/// otherwise leave pixels unpainted.
void coverPixels(QWidget& widget, const QRect& frame);

/// Sets the bounding shape of `widget` to `region`, in pixels from its top-left corner.
void cutOut(QWidget& widget, const QRegion& region);

/// Makes the server fill newly exposed pixels of a translucent `widget` with full transparency until Qt
/// paints them. Does nothing when Qt does not run on X11.
void clearWhenShown(QWidget& widget);

} // namespace tessarel::qt
