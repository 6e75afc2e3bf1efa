// SPDX-License-Identifier: MIT

#include "platform/qt_x11/qt_x11_application.h"

#include "platform/qt/window_order.h"
#include "platform/qt_x11/qt_connection.h"

#include <QApplication>
#include <QWidget>
#include <QWidgetList>
#include <xcb/xcb.h>

namespace tessarel::qt {

namespace {

/// Waits until the server has processed what Qt has sent, such as the request to map a window. Requests on
/// another connection come later then.
void waitForRequests() {
    if (xcb_connection_t* const xcb = qtConnection())
        const Reply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}

bool isVisibleWindow(const QWidget* widget) {
    const Qt::WindowType type = widget->windowType();
    return widget->isVisible() && (type == Qt::Window || type == Qt::Dialog);
}

std::uint32_t idOf(const QWidget& window) {
    return static_cast<std::uint32_t>(window.winId());
}

} // namespace

void QtX11Application::activate() {
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.removeIf([](const QWidget* window) { return !isVisibleWindow(window); });
    if (windows.isEmpty())
        return;
    sortForRaising(windows);
    waitForRequests();
    const QWidget* const last = windows.takeLast();
    windows.removeIf(isMessage);
    for (const QWidget* const window : windows)
        m_bringAlong(idOf(*window));
    m_bringToUser(idOf(*last));
}

} // namespace tessarel::qt
