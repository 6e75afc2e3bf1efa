#pragma once

#include <QRect>
#include <QRegion>

class QWidget;

namespace tessarel::qt {

/// What Qt cannot do to the pixel where the user has set a scale factor. On a system without native windows
/// to speak of, Qt's own means are used.

/// Lets the window of `widget`, which need not be shown, cover `frame`, in pixels of the desktop, and a few
/// pixels more at the right and bottom where Qt would otherwise paint a few less.
void coverPixels(QWidget& widget, const QRect& frame);

/// Cuts `widget` down to `region`, in pixels from its corner.
void cutOut(QWidget& widget, const QRegion& region);

/// Makes the pixels of a translucent `widget` transparent whenever they come up, before they are painted.
void clearWhenShown(QWidget& widget);

} // namespace tessarel::qt
