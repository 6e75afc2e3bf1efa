// SPDX-License-Identifier: MIT

#include "program/qt_program.h"

#include "look/control_style.h"
#include "model/config.h"
#include "qt_values/text.h"

#include <QApplication>

namespace tessarel {

void describeProgramToQt() {
    QApplication::setApplicationName(toQString(Config::appName));
    // The name of the desktop entry, by which panels and portals know the windows.
    QApplication::setDesktopFileName(toQString(Config::bundleID));
    QApplication::setApplicationVersion(toQString(Config::version));
    // The program goes on in the status area when its windows are closed.
    QApplication::setQuitOnLastWindowClosed(false);
}

void useControlStyle() {
    QApplication::setStyle(new ControlStyle);
}

} // namespace tessarel
