// SPDX-License-Identifier: MIT

#pragma once

#include "app/ports.h"

#include <QColor>
#include <QFont>
#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>

#include <functional>

class QAbstractScrollArea;
class QCheckBox;
class QLabel;
class QPalette;
class QPushButton;

namespace tessarel {

// The controls of the settings window. Frames are (x, y, width, height) in device-independent pixels from the
// top-left corner of the parent, y down. Font sizes are device-independent pixels. The parent owns the
// control.
//
// A text that does not fit its frame is set in a smaller font, down to 11 pixels. If it still does not fit,
// it ends in an ellipsis, and the tooltip shows the full text. Texts are shown literally, without markup or
// mnemonics.

/// Size of the view of every tab.
inline constexpr QSize kTabSize(780, 480);

/// A view whose origin is its top-left corner, y down. Every Qt widget is one.
using FlippedView = QWidget;

/// Appearance of a one-line label.
struct LabelStyle {
    bool bold = false;
    int size = 13;
    bool secondary = false; ///< in the dimmed colour of less important texts
};

/// Appearance of a label that wraps its text.
struct WrapStyle {
    int size = 12;
    bool secondary = false; ///< in the dimmed colour of less important texts
};

/// Creates a one-line label, centred vertically in its frame.
QLabel* makeLabel(QWidget& parent, const QString& text, const QRect& frame, const LabelStyle& style = {});

/// Creates a label that wraps its text, aligned with the top of its frame.
QLabel* makeWrap(QWidget& parent, const QString& text, const QRect& frame, const WrapStyle& style = {});

/// Sets all wrapped labels directly on `view` that are to have the same font size in the largest size in
/// which each of them fits. Call it once, when the view has all its labels.
void unifyNotes(QWidget& view);

/// Creates a push button that calls `action`, which may be empty, when it is clicked.
QPushButton* makeButton(QWidget& parent, const QString& title, const QRect& frame,
                        std::function<void()> action);

/// Creates a check box that calls `action` with the new state when the user changes it, but not when the
/// program does. `action` may be empty.
QCheckBox* makeCheckBox(QWidget& parent, const QString& title, const QRect& frame,
                        std::function<void(bool)> action);

/// Sets the frame of `area` and surrounds it with a border that is complete at every scale and shows the
/// keyboard focus. The border is a sibling of `area`, whose parent must be set. Also gives the content of
/// `area` the background of lists.
void setBezeled(QAbstractScrollArea& area, const QRect& frame);

/// Makes the text of `label` the accessible name of `control`, so that screen readers announce it.
void nameAfter(QLabel& label, QWidget& control);

/// Returns whether `control` has the focus and the user has moved the focus with the keyboard.
[[nodiscard]] bool showsKeyboardFocus(const QWidget& control);

/// Changes the text of a control of this kit and fits it into the frame again.
void setFittedText(QLabel& label, const QString& text);
void setFittedText(QPushButton& button, const QString& title);
/// Returns the full text of a control of this kit, even if it is shown with an ellipsis.
[[nodiscard]] QString fullText(const QWidget& control);

/// Returns `value` with at most two decimals and six significant digits, without trailing zeros: "12.5",
/// "0.13". Halves are rounded away from zero, and zero has no sign. Values from a million on have an
/// exponent.
[[nodiscard]] QString fmtNum(double value);

/// Brings the program to the front and shows a modal message. Returns when the user has dismissed it.
void showMessage(const Ports& ports, const QString& title, const QString& text);

/// Returns the application's font in `size` device-independent pixels.
[[nodiscard]] QFont systemFont(int size, QFont::Weight weight = QFont::Normal);

/// Return the colours of `palette` that correspond to AppKit's colours of these names: of texts, of less
/// important texts, of lines and outlines, of the background of lists and fields, and of the selection.
[[nodiscard]] QColor labelColor(const QPalette& palette);
[[nodiscard]] QColor secondaryLabelColor(const QPalette& palette);
[[nodiscard]] QColor separatorColor(const QPalette& palette);
[[nodiscard]] QColor controlBackgroundColor(const QPalette& palette);
[[nodiscard]] QColor controlAccentColor(const QPalette& palette);
/// Returns the colour of a text on a button that draws the user's attention to a problem.
[[nodiscard]] QColor warningColor(const QPalette& palette);

} // namespace tessarel
