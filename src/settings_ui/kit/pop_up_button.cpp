// SPDX-License-Identifier: MIT

#include "settings_ui/kit/pop_up_button.h"

#include "settings_ui/kit/fitted_text.h"
#include "settings_ui/kit/kit.h"

#include <QChar>
#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace tessarel {

namespace {

/// Widest title, in characters of average width. The open list is as wide as its widest title.
constexpr int kWidestInCharacters = 60;
/// Longest title that is measured, in UTF-16 code units. Measuring takes time, and no more can be shown.
constexpr int kLongestMeasured = 512;
/// Distance between the field and its text, in device-independent pixels.
constexpr int kTextMargin = 2;

bool isLineBreakOrControl(QChar character) {
    return character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line ||
           character.category() == QChar::Separator_Paragraph;
}

/// Returns `text` with spaces for line breaks and control characters, cut to the widest title.
QString oneLine(QString text, const QFontMetrics& metrics) {
    if (text.size() > kLongestMeasured)
        text = text.left(kLongestMeasured) + QChar(0x2026);
    std::ranges::replace_if(text, isLineBreakOrControl, QChar(u' '));
    return metrics.elidedText(text, Qt::ElideRight, kWidestInCharacters * metrics.averageCharWidth());
}

} // namespace

PopUpButton::PopUpButton(QWidget& parent, const QRect& frame, std::function<void()> action)
    : QComboBox(&parent) {
    setFont(systemFont(13));
    setGeometry(frame);
    setFocusPolicy(
        Qt::StrongFocus); // a plain QComboBox also takes the focus when the wheel is turned over it
    connect(this, &QComboBox::activated, this, [action = std::move(action)] { action(); });
}

void PopUpButton::append(const QString& title, const QVariant& value) {
    addItem(oneLine(title, fontMetrics()), value);
}

void PopUpButton::appendSeparator() {
    insertSeparator(count());
}

void PopUpButton::select(const QVariant& value) {
    if (const int index = findData(value); index >= 0)
        setCurrentIndex(index);
}

/// Keys only open the list; with a plain QComboBox, arrow keys and letters would choose at once.
void PopUpButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_F4:
        return showPopup();
    default:
        event->ignore();
    }
}

void PopUpButton::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

/// Returns the chosen title, cut with an ellipsis to the width of the button.
QString PopUpButton::shownText() const {
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    return fontMetrics().elidedText(currentText(), Qt::ElideRight, field.width() - 2 * kTextMargin);
}

/// Paints like QComboBox, which would cut a long title off without an ellipsis.
void PopUpButton::paintEvent(QPaintEvent* /*event*/) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    option.currentText = shownText();
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

/// Shows a tooltip with the title if it is shown with an ellipsis.
bool PopUpButton::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QComboBox::event(event);
    const bool isWhole = shownText() == currentText();
    QToolTip::showText(dynamic_cast<QHelpEvent&>(*event).globalPos(),
                       isWhole ? QString() : fitted_text::toolTip(currentText()), this);
    return true;
}

} // namespace tessarel
