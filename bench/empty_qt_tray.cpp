// SPDX-License-Identifier: MIT

// An empty Qt tray program: the baseline for startup time, memory and idle costs. Prints "ready" in the first
// iteration of its event loop.

#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

#include <cstdio>

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);

    QPixmap picture(22, 22);
    picture.fill(Qt::darkGray);
    QMenu menu;
    menu.addAction("Quit", &application, &QApplication::quit);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setContextMenu(&menu);
    icon.show();

    QTimer::singleShot(0, [] {
        std::puts("ready");
        std::fflush(stdout);
    });
    return QApplication::exec();
}
