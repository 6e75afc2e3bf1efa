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

/// What every tab of the settings window is made of. All frames are (x, y, width, height) in points from the
/// top-left corner of the parent; font sizes are pixels at scale 1. The parent owns what is made.
///
/// A text that is larger than its frame is set smaller, pixel by pixel down to 11, and then ends in an
/// ellipsis, with the whole text as tooltip. Texts are plain: no markup, no mnemonics.

/// How large each tab's view is.
inline constexpr QSize kTabSize(780, 480);

/// A view whose origin is its top-left corner, y down: a plain widget.
using FlippedView = QWidget;

struct LabelStyle {
    bool bold = false;
    int size = 13;
    bool secondary = false;
};

struct WrapStyle {
    int size = 12;
    bool secondary = false;
};

/// A label of one line, centred vertically in its frame.
QLabel* makeLabel(QWidget& parent, const QString& text, const QRect& frame, const LabelStyle& style = {});

/// A label of several lines from the top of its frame.
QLabel* makeWrap(QWidget& parent, const QString& text, const QRect& frame, const WrapStyle& style = {});

/// A push button that calls `action` when it is clicked; none is allowed.
QPushButton* makeButton(QWidget& parent, const QString& title, const QRect& frame,
                        std::function<void()> action);

/// A check box that calls `action` with its new state when the user changes it, not when the program does.
QCheckBox* makeCheckBox(QWidget& parent, const QString& title, const QRect& frame,
                        std::function<void(bool)> action);

/// Gives `area` this frame, with a line around it that is whole at every scale.
void setBezeled(QAbstractScrollArea& area, const QRect& frame);

/// Makes `label` say what `control` is, also to those who hear the window instead of seeing it.
void nameAfter(QLabel& label, QWidget& control);

/// Changes the text of a control of this kit, which is fitted into its frame again.
void setFittedText(QLabel& label, const QString& text);
void setFittedText(QPushButton& button, const QString& title);
/// The whole text of a control of this kit, also while it is shown with an ellipsis.
[[nodiscard]] QString fullText(const QWidget& control);

/// `value` with at most two decimals, a half rounded away from zero, and no trailing zeros: "12.5", "0.13".
/// From a million on only six digits are told, with an exponent.
[[nodiscard]] QString fmtNum(double value);

/// Brings the program to the front and shows a message until the user dismisses it.
void showMessage(const Ports& ports, const QString& title, const QString& text);

/// The font of the window in `size` pixels at scale 1.
[[nodiscard]] QFont systemFont(int size, QFont::Weight weight = QFont::Normal);

/// The colours that the platform's named ones stand for.
[[nodiscard]] QColor labelColor(const QPalette& palette);
[[nodiscard]] QColor secondaryLabelColor(const QPalette& palette);
[[nodiscard]] QColor separatorColor(const QPalette& palette);
[[nodiscard]] QColor controlBackgroundColor(const QPalette& palette);
[[nodiscard]] QColor controlAccentColor(const QPalette& palette);

} // namespace tessarel
