// SPDX-License-Identifier: MIT

#include "platform/qt/qt_own_application.h"

#include <QApplication>
#include <QWidget>

namespace tessarel::qt {

void QtOwnApplication::activate() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (!window->isVisible())
            continue;
        window->raise();
        window->activateWindow();
    }
}

void QtOwnApplication::terminate() {
    QApplication::exit();
}

} // namespace tessarel::qt
