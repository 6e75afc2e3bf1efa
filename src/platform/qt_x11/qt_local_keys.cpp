// SPDX-License-Identifier: MIT

#include "platform/qt_x11/qt_local_keys.h"

#include "platform/qt_x11/keyboard_focus_watch.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QObject>
#include <QPointer>
#include <QWindow>

#include <map>
#include <optional>
#include <utility>

namespace tessarel::qt {

namespace {

/// Returns whether the key is a modifier of bindings, or changes the keyboard layout together with one. Right
/// Alt is neither on a keyboard on which it selects the third level of the keys.
bool isModifier(const QKeyEvent& press) {
    constexpr quint32 kIsoGroupShift = 0xFE06;    // XK_ISO_Group_Latch, the first of these key symbols
    constexpr quint32 kIsoLastGroupLock = 0xFE0F; // XK_ISO_Last_Group_Lock
    switch (press.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
        return true;
    default:
        return press.nativeVirtualKey() >= kIsoGroupShift && press.nativeVirtualKey() <= kIsoLastGroupLock;
    }
}

} // namespace

/// An active keyboard grab for at most one window at a time. With it, combinations that are registered as hot
/// keys, by this program or another, come to the window as ordinary key events.
class QtLocalKeys::KeyboardGrab {
public:
    KeyboardGrab() = default;
    KeyboardGrab(const KeyboardGrab&) = delete;
    KeyboardGrab& operator=(const KeyboardGrab&) = delete;
    ~KeyboardGrab() { holdFor(nullptr); }

    /// Moves the grab to `window`; null releases it.
    void holdFor(QWindow* window) {
        if (m_window == window)
            return;
        if (m_window)
            m_window->setKeyboardGrabEnabled(false);
        m_window = window;
        if (m_window)
            m_window->setKeyboardGrabEnabled(true);
    }

private:
    QPointer<QWindow> m_window; // null once the window has been destroyed, which ends the grab
};

/// The application-wide event filter that feeds the monitors.
///
/// It is installed while there is a monitor, and afterwards until the last consumed key is released: the
/// repetitions of that key must not reach other receivers.
class QtLocalKeys::Filter : public QObject, public std::enable_shared_from_this<Filter> {
public:
    Filter(Translation translation, Look isHeld)
        : m_translation(std::move(translation)), m_isHeld(std::move(isHeld)) {
        QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this] {
            m_heldKey.reset(); // its release goes to another window
            update();
        });
    }

    /// Adds a handler and returns its number. Lower numbers are called first.
    [[nodiscard]] int add(Handler handler) {
        m_handlers.emplace(m_next, std::move(handler));
        update();
        return m_next++;
    }
    void remove(int number) {
        m_handlers.erase(number);
        update();
    }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        // Qt delivers key events to the window first and then to the focused widget. The first is enough.
        if (!receiver->isWindowType())
            return false;
        switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept(); // keeps Qt from triggering a shortcut; the key press itself follows
            return true;
        case QEvent::KeyPress:
            return handlePress(static_cast<const QKeyEvent&>(*event));
        case QEvent::KeyRelease:
            handleRelease(static_cast<const QKeyEvent&>(*event));
            return false;
        default:
            return false;
        }
    }

private:
    /// Releases the grab at once when the focus has left, of which Qt reports only later. When it has come,
    /// grabs only once Qt agrees which window is focused.
    void focusChanged(KeyboardFocusWatch::Change change, WId window) {
        m_isFocusLost = change == KeyboardFocusWatch::Change::Lost;
        const QWindow* const known = QGuiApplication::focusWindow();
        if (m_isFocusLost || (known && known->winId() == window))
            update();
    }

    /// Returns true when the press was consumed, which also holds for repetitions and for modifier keys.
    bool handlePress(const QKeyEvent& press) {
        // Typed while this program still held the grab, but meant for another window: discard it.
        if (m_isFocusLost)
            return true;
        if (isModifier(press) || press.isAutoRepeat() || m_heldKey == press.nativeScanCode())
            return true;
        const KeyDown key =
            m_translation(press.nativeScanCode(), press.nativeModifiers()).value_or(KeyDown{});
        const auto self = shared_from_this(); // a handler may destroy the port
        // Set before the handlers run: one of them may remove the last monitor, and the filter must stay
        // installed.
        m_heldKey = press.nativeScanCode();
        if (isConsumed(key))
            return true;
        m_heldKey.reset();
        update();
        return false;
    }

    void handleRelease(const QKeyEvent& release) {
        // X11 repeats a key as release and press. When the press arrives late, Qt reports the release as
        // real, so `m_isHeld` checks whether the key is still down.
        if (m_heldKey != release.nativeScanCode() || m_isHeld(release.nativeScanCode()))
            return;
        m_heldKey.reset();
        update();
    }

    /// Calls the handlers in order until one consumes the key. A handler may remove itself or others.
    [[nodiscard]] bool isConsumed(const KeyDown& key) {
        const auto present = m_handlers;
        for (const auto& [number, handler] : present) {
            if (m_handlers.contains(number) && handler(key)) // skips removed handlers
                return true;
        }
        return false;
    }

    /// Installs or removes the filter, and moves the grab to the focused window, as needed now.
    void update() {
        if (qGuiApp == nullptr) // the program is exiting
            return;
        const bool isNeeded = !m_handlers.empty() || m_heldKey;
        if (isNeeded && !m_focusWatch) {
            qGuiApp->installEventFilter(this);
            m_isFocusLost = false;
            m_focusWatch.emplace([this](auto change, WId window) { focusChanged(change, window); });
        } else if (!isNeeded && m_focusWatch) {
            qGuiApp->removeEventFilter(this);
            m_focusWatch.reset();
        }
        m_grab.holdFor(isNeeded && !m_isFocusLost ? QGuiApplication::focusWindow() : nullptr);
    }

    Translation m_translation;
    Look m_isHeld;
    KeyboardGrab m_grab;
    int m_next = 0;
    std::map<int, Handler> m_handlers;
    std::optional<quint32> m_heldKey;               ///< scan code of a consumed key until its release
    std::optional<KeyboardFocusWatch> m_focusWatch; ///< set while the filter is installed
    bool m_isFocusLost = false;                     ///< the server has reported FocusOut, Qt may not have yet
};

/// Removes its handler on destruction. Shares the filter, because the monitor may outlive the port.
class QtLocalKeys::Monitor : public Subscription {
public:
    Monitor(std::shared_ptr<Filter> filter, Handler handler)
        : m_filter(std::move(filter)), m_number(m_filter->add(std::move(handler))) {}
    ~Monitor() override { m_filter->remove(m_number); }

private:
    std::shared_ptr<Filter> m_filter;
    int m_number;
};

QtLocalKeys::QtLocalKeys(Translation translation, Look isHeld)
    : m_translation(std::move(translation)), m_isHeld(std::move(isHeld)) {}

QtLocalKeys::~QtLocalKeys() = default;

SubscriptionPtr QtLocalKeys::monitorKeyDown(Handler handler) {
    if (!m_filter)
        m_filter = std::make_shared<Filter>(m_translation, m_isHeld);
    return std::make_unique<Monitor>(m_filter, std::move(handler));
}

} // namespace tessarel::qt
