// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_row.h"

#include "platform/qt_xdg/application_list.h"
#include "qt_values/color.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPalette>
#include <QRect>
#include <QString>
#include <QStyle>

#include <algorithm>

namespace tessarel::qt {

namespace {

// In device-independent pixels.
constexpr int kRowMargin = 8;
constexpr int kRowPadding = 5; // above and below the icon

constexpr double kRunningOpacity = 0.7; // less important than the name

/// Draws `text` at the left or right edge of `frame`, shortened to it, and returns its width.
int drawText(QPainter& painter, const QStyleOptionViewItem& option, const QRect& frame,
             Qt::AlignmentFlag edge, const QString& text) {
    const QString shown = option.fontMetrics.elidedText(text, Qt::ElideRight, frame.width());
    painter.drawText(frame, static_cast<int>(edge | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
    return option.fontMetrics.horizontalAdvance(shown);
}

} // namespace

void ApplicationRow::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QStyle* const style = row.widget ? row.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, row.widget);

    QRect free = row.rect.adjusted(kRowMargin, 0, -kRowMargin, 0);
    const QRect icon(free.left(), free.center().y() - kIconSize / 2 + 1, kIconSize, kIconSize);
    row.icon.paint(painter, QStyle::visualRect(row.direction, row.rect, icon));
    free.setLeft(icon.right() + kRowMargin);

    const bool isSelected = row.state.testFlag(QStyle::State_Selected);
    const QColor text = row.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    painter->save();
    painter->setFont(row.font);
    if (index.data(ApplicationList::IsRunning).toBool()) {
        painter->setPen(isSelected ? text : translucent(text, kRunningOpacity));
        free.setRight(free.right() - kRowMargin -
                      drawText(*painter, row, free, Qt::AlignRight, QStringLiteral("Running")));
    }
    painter->setPen(text);
    drawText(*painter, row, free, Qt::AlignLeft, row.text);
    painter->restore();
}

QSize ApplicationRow::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {kIconSize, std::max(kIconSize, option.fontMetrics.height()) + 2 * kRowPadding};
}

} // namespace tessarel::qt
