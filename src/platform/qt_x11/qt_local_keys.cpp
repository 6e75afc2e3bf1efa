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

/// The keyboard, held for at most one window at a time.
class QtLocalKeys::KeyboardGrab {
public:
    KeyboardGrab() = default;
    KeyboardGrab(const KeyboardGrab&) = delete;
    KeyboardGrab& operator=(const KeyboardGrab&) = delete;
    ~KeyboardGrab() { holdFor(nullptr); }

    /// For `window` from now on; null lets go.
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
    QPointer<QWindow> m_window;
};

/// Sees every event of the application before its receiver, while there is a monitor, and then until the key
/// that was consumed last is released: its repetitions are nobody else's.
class QtLocalKeys::Filter : public QObject, public std::enable_shared_from_this<Filter> {
public:
    Filter(Translation translation, Look isHeld)
        : m_translation(std::move(translation)), m_isHeld(std::move(isHeld)) {
        QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this] {
            m_heldKey.reset(); // others hear of its release
            update();
        });
    }

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
        if (!receiver->isWindowType()) // keys come to a window first, and from there to its controls
            return false;
        switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept(); // and do not look for a shortcut: the press itself follows
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
    /// The focus has come to a window of ours or left it, which Qt may not have told of yet.
    void focusChanged(KeyboardFocusWatch::Change change, WId window) {
        m_isFocusLost = change == KeyboardFocusWatch::Change::Lost;
        const QWindow* const known = QGuiApplication::focusWindow();
        if (m_isFocusLost || (known && known->winId() == window))
            update();
    }

    bool handlePress(const QKeyEvent& press) {
        if (m_isFocusLost)
            return true; // typed for another window while the keyboard was still ours
        const auto key = m_translation(press.nativeScanCode(), press.nativeModifiers());
        if (!key || press.isAutoRepeat() || m_heldKey == press.nativeScanCode())
            return true;
        const auto self = shared_from_this(); // a handler may end the port
        m_heldKey = press.nativeScanCode();   // or the last monitor
        if (isConsumed(*key))
            return true;
        m_heldKey.reset();
        update();
        return false;
    }

    void handleRelease(const QKeyEvent& release) {
        // Qt takes the release before a repetition for the real one when the press behind it comes late.
        if (m_heldKey != release.nativeScanCode() || m_isHeld(release.nativeScanCode()))
            return;
        m_heldKey.reset();
        update();
    }

    [[nodiscard]] bool isConsumed(const KeyDown& key) {
        const auto present = m_handlers;
        for (const auto& [number, handler] : present) {
            if (m_handlers.contains(number) && handler(key)) // or an earlier one has ended it
                return true;
        }
        return false;
    }

    /// Takes the keyboard and sees events, or no more, as needed now.
    void update() {
        if (qGuiApp == nullptr) // the program is ending
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
    std::optional<quint32> m_heldKey;               ///< consumed, and not released yet
    std::optional<KeyboardFocusWatch> m_focusWatch; ///< while events are seen
    bool m_isFocusLost = false;
};

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
