// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QtGui/qwindowdefs.h>

#include <functional>

namespace tessarel::qt {

/// Reports that the keyboard focus enters or leaves a window of this program, as soon as the X server sends
/// the event. Qt waits 0.1 s before it reports that the focus has gone to another program.
///
/// Focus events that are caused by keyboard grabs are ignored, because the focus stays where it is. Does
/// nothing when Qt does not run on X11.
class KeyboardFocusWatch : public QAbstractNativeEventFilter {
public:
    enum class Change : bool { Gained, Lost };
    using Handler = std::function<void(Change, WId window)>;

    /// Calls `changed` for every change until the watch is destroyed, before Qt handles the event. Requires
    /// the application object.
    explicit KeyboardFocusWatch(Handler changed);
    KeyboardFocusWatch(const KeyboardFocusWatch&) = delete;
    KeyboardFocusWatch& operator=(const KeyboardFocusWatch&) = delete;
    ~KeyboardFocusWatch() override;

    /// Never filters out the event: Qt has to see it as well.
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    Handler m_changed;
};

} // namespace tessarel::qt
