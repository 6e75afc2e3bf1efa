// SPDX-License-Identifier: MIT

#include "platform/qt/window_order.h"

#include <QDialog>
#include <QWidget>

#include <algorithm>

namespace tessarel::qt {

namespace {

int rank(const QWidget* window) {
    if (window->isModal())
        return 2;
    return isMessage(window) ? 0 : 1;
}

} // namespace

bool isMessage(const QWidget* window) {
    return !window->isModal() && qobject_cast<const QDialog*>(window);
}

void sortForRaising(QWidgetList& windows) {
    std::ranges::stable_sort(windows, {}, rank);
}

} // namespace tessarel::qt
