// SPDX-License-Identifier: MIT

#pragma once

#include <QSize>
#include <QStyledItemDelegate>

namespace tessarel::qt {

/// Draws a row of an `ApplicationList`: icon, name, and at the right edge whether the application is running.
class ApplicationRow : public QStyledItemDelegate {
public:
    static constexpr int kIconSize = 24; ///< in device-independent pixels

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace tessarel::qt
