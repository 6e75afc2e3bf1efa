#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QString>
#include <QWidget>

namespace tessarel {

/// Texts that fit the frame of their control, whatever font the user has: smaller than asked for if need be,
/// and with an ellipsis when the smallest size is still too large.
namespace fitted_text {

/// The smallest size that a text is set in, in pixels at scale 1.
inline constexpr int kSmallest = 11;

/// Shows `text` in the font that the control has now, which is the largest it will ever be set in.
void init(QLabel& label, const QString& text);
void init(QAbstractButton& button, const QString& text);

/// Shows another text in a control that has been through `init`.
void change(QLabel& label, const QString& text);
void change(QAbstractButton& button, const QString& text);

/// What the control stands for, also where only a part of it is shown.
[[nodiscard]] QString whole(const QWidget& control);

/// A tooltip that shows `text` as it stands, also what looks like markup.
[[nodiscard]] QString toolTip(const QString& text);

} // namespace fitted_text

} // namespace tessarel
