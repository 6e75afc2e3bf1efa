// SPDX-License-Identifier: MIT

#include "program/qt_program.h"

#include "look/control_style.h"
#include "model/config.h"
#include "qt_values/text.h"

#include <QApplication>

namespace tessarel {

void describeProgramToQt() {
    // The same style on every system; it takes its colours from the palette.
    QApplication::setStyle(new ControlStyle);
    QApplication::setApplicationName(toQString(Config::appName));
    // The name of the desktop entry, by which panels and portals know the windows.
    QApplication::setDesktopFileName(toQString(Config::bundleID));
    QApplication::setApplicationVersion(toQString(Config::version));
    // The program goes on in the status area when its windows are closed.
    QApplication::setQuitOnLastWindowClosed(false);
}

} // namespace tessarel
