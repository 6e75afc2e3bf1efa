#include "platform/qt/qt_local_keys.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QObject>
#include <QPointer>
#include <QWindow>

#include <map>
#include <utility>

namespace tessarel::qt {

namespace {

/// The keyboard, held for at most one window at a time.
class KeyboardGrab {
public:
    KeyboardGrab() = default;
    KeyboardGrab(const KeyboardGrab&) = delete;
    KeyboardGrab& operator=(const KeyboardGrab&) = delete;
    ~KeyboardGrab() { holdFor(nullptr); }

    /// For `window` from now on; null lets go.
    void holdFor(QWindow* window) {
        if (m_window)
            m_window->setKeyboardGrabEnabled(false);
        m_window = window;
        if (m_window)
            m_window->setKeyboardGrabEnabled(true);
    }

private:
    QPointer<QWindow> m_window;
};

} // namespace

/// Sees every event of the application before its receiver, for as long as there is a monitor.
class QtLocalKeys::Filter : public QObject, public std::enable_shared_from_this<Filter> {
public:
    explicit Filter(Translation translation) : m_translation(std::move(translation)) {
        QCoreApplication::instance()->installEventFilter(this);
        QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, this,
                         [this](QWindow* window) { m_grab.holdFor(window); });
        m_grab.holdFor(QGuiApplication::focusWindow());
    }

    [[nodiscard]] int add(Handler handler) {
        m_handlers.emplace(m_next, std::move(handler));
        return m_next++;
    }
    void remove(int number) { m_handlers.erase(number); }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        if (!receiver->isWindowType()) // keys come to a window first, and from there to its controls
            return false;
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept(); // and do not look for a shortcut: the press itself follows
            return true;
        }
        return event->type() == QEvent::KeyPress && isConsumed(static_cast<const QKeyEvent&>(*event));
    }

private:
    [[nodiscard]] bool isConsumed(const QKeyEvent& press) {
        const auto key = m_translation(press.nativeScanCode(), press.nativeModifiers());
        return !key || press.isAutoRepeat() || isConsumed(*key);
    }

    [[nodiscard]] bool isConsumed(const KeyDown& key) {
        const auto self = shared_from_this(); // a handler may end the last monitor
        const auto present = m_handlers;
        for (const auto& [number, handler] : present) {
            if (m_handlers.contains(number) && handler(key)) // or an earlier one has ended it
                return true;
        }
        return false;
    }

    Translation m_translation;
    KeyboardGrab m_grab;
    int m_next = 0;
    std::map<int, Handler> m_handlers;
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

QtLocalKeys::QtLocalKeys(Translation translation) : m_translation(std::move(translation)) {}

SubscriptionPtr QtLocalKeys::monitorKeyDown(Handler handler) {
    std::shared_ptr<Filter> filter = m_filter.lock();
    if (!filter) {
        filter = std::make_shared<Filter>(m_translation);
        m_filter = filter;
    }
    return std::make_unique<Monitor>(std::move(filter), std::move(handler));
}

} // namespace tessarel::qt
