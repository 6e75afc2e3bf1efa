// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QList>
#include <QString>
#include <QWidget>

namespace tessarel {

/// Fits texts into the frames of their controls, whatever font the user has. A text that is too large is set
/// in a smaller size; one that does not fit in the smallest size either ends in an ellipsis after a whole
/// word.
namespace fitted_text {

/// The smallest font size, in device-independent pixels.
inline constexpr int kSmallest = 11;

/// Shows `text`. Call it once, when the control has its frame and its font, whose size must be set in pixels:
/// that size is the largest one for this text and for later ones.
void init(QLabel& label, const QString& text);
void init(QAbstractButton& button, const QString& text);

/// Shows another text in a control that `init` has been called for.
void change(QLabel& label, const QString& text);
void change(QAbstractButton& button, const QString& text);

/// Gives all `labels`, which `init` has been called for, the largest font size in which each of them fits.
void shareSize(const QList<QLabel*>& labels);

/// Returns the font size that a control has if its text fits and its size is not shared.
[[nodiscard]] int largestSize(const QWidget& control);

/// Returns the full text of a control, even if it is shown with an ellipsis.
[[nodiscard]] QString whole(const QWidget& control);

/// Returns a tooltip that shows `text` literally, even if it looks like markup.
[[nodiscard]] QString toolTip(const QString& text);

} // namespace fitted_text

} // namespace tessarel
