#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QtGui/qwindowdefs.h>

#include <functional>

namespace tessarel::qt {

/// Tells when the keyboard focus comes to a window of ours or leaves it, as soon as the X server says so. Qt
/// waits a tenth of a second before it passes on that the focus has gone to another program.
///
/// Grabs, which leave the focus where it is, are not told. Where there is no X server it tells nothing.
class KeyboardFocusWatch : public QAbstractNativeEventFilter {
public:
    enum class Change : bool { Gained, Lost };
    using Handler = std::function<void(Change, WId window)>;

    /// Calls `changed` from now on, before Qt handles the event. Needs the application object.
    explicit KeyboardFocusWatch(Handler changed);
    KeyboardFocusWatch(const KeyboardFocusWatch&) = delete;
    KeyboardFocusWatch& operator=(const KeyboardFocusWatch&) = delete;
    ~KeyboardFocusWatch() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    Handler m_changed;
};

} // namespace tessarel::qt
