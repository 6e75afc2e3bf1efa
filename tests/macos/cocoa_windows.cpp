// SPDX-License-Identifier: MIT

#include "macos/cocoa_windows.h"

#include "macos/fake/fake_mac.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace tessarel {

CocoaWindows::CocoaWindows() {
    QApplication::instance()->installEventFilter(this);
}

void* CocoaWindows::view(QWidget& widget) {
    return viewOf(widget).native();
}

fakemac::WindowSight CocoaWindows::sight(QWidget& widget) {
    return viewOf(widget).window();
}

fakemac::View& CocoaWindows::viewOf(QWidget& widget) {
    auto& view = m_views[&widget];
    if (!view) {
        view = std::make_unique<fakemac::View>();
        view->makeWindowAnew();
        connect(&widget, &QObject::destroyed, this, [this](QObject* gone) { m_views.erase(gone); });
    }
    return *view;
}

bool CocoaWindows::eventFilter(QObject* watched, QEvent* event) {
    auto* const widget = qobject_cast<QWidget*>(watched);
    if (!widget || !widget->isWindow())
        return false;
    switch (event->type()) {
    case QEvent::Show:
        show(*widget);
        break;
    case QEvent::ZOrderChange:
        raise(*widget);
        break;
    case QEvent::Hide:
        viewOf(*widget).orderOut();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        resize(*widget);
        break;
    default:
        break;
    }
    return false;
}

/// Recreates the native window first, as Qt may do whenever it shows a widget.
void CocoaWindows::show(QWidget& widget) {
    const Qt::WindowFlags flags = widget.windowFlags();
    viewOf(widget).makeWindowAnew();
    resize(widget);
    viewOf(widget).orderFront(!flags.testFlag(Qt::WindowDoesNotAcceptFocus));
}

void CocoaWindows::raise(QWidget& widget) {
    if (!widget.isVisible())
        return;
    viewOf(widget).orderFront(false);
    if (qgetenv("QT_MAC_SET_RAISE_PROCESS") != "0")
        fakemac::activateOwnProgram();
}

void CocoaWindows::resize(QWidget& widget) {
    const QRect frame = widget.geometry();
    const double primaryHeight =
        fakemac::mac().displays.empty() ? 0 : fakemac::mac().displays[0].frame.height;
    viewOf(widget).setFrame({static_cast<double>(frame.x()), primaryHeight - frame.y() - frame.height(),
                             static_cast<double>(frame.width()), static_cast<double>(frame.height())});
}

} // namespace tessarel
