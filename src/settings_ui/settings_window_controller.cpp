// SPDX-License-Identifier: MIT

#include "settings_ui/settings_window_controller.h"

#include "model/config.h"
#include "qt_values/text.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QKeySequence>
#include <QRect>
#include <QScreen>
#include <QShortcut>
#include <QSize>
#include <QString>
#include <QTabBar>
#include <QTabWidget>

#include <algorithm>
#include <functional>
#include <utility>

namespace tessarel {
namespace {

// In device-independent pixels.
constexpr QSize kWindowSize(820, 540);
constexpr QRect kTabsFrame(10, 10, 800, 520);
constexpr QPoint kViewOrigin(8, 4); // centres a view in the page of its tab

/// Without a maximise button, because the size of the window is fixed.
constexpr Qt::WindowFlags kWindowFlags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                         Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                                         Qt::WindowCloseButtonHint;

QString title() {
    return toQString(Config::appName) + QLatin1String(" Settings");
}

/// Centres `window` on the screen under the pointer. If the window is larger than the screen, its top-left
/// corner stays visible.
void center(QWidget& window) {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect room = screen->availableGeometry();
    QRect frame(QPoint(), window.size());
    frame.moveCenter(room.center());
    window.move(std::max(frame.left(), room.left()), std::max(frame.top(), room.top()));
}

/// Returns whether the centre of `window` is on a screen. It is not after the display has been unplugged, and
/// not every window manager moves the window then.
bool isOnScreen(const QWidget& window) {
    return QGuiApplication::screenAt(window.frameGeometry().center()) != nullptr;
}

/// The window, as a class of its own, by which `makeAccessible` recognises it.
class Window : public QWidget {
public:
    /// `activated` is called each time the window gets the keyboard focus.
    explicit Window(std::function<void()> activated)
        : QWidget(nullptr, kWindowFlags), m_activated(std::move(activated)) {
        QAccessible::installFactory(makeAccessible); // Qt ignores a factory that is installed already
    }

protected:
    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::ActivationChange && isActiveWindow())
            m_activated();
    }

private:
    /// Makes the window a window for screen readers, which would take a bare widget for a part of one.
    /// Returns null for all other objects; Qt then uses its own factories.
    static QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
        auto* const window = dynamic_cast<Window*>(object);
        return window ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
    }

    std::function<void()> m_activated;
};

void addShortcut(QWidget& window, QKeyCombination keys, std::function<void()> action) {
    auto* const shortcut = new QShortcut(QKeySequence(keys), &window);
    QObject::connect(shortcut, &QShortcut::activated, shortcut, std::move(action));
}

} // namespace

SettingsWindowController::SettingsWindowController(Services& services, const Ports& ports)
    : m_ports(ports), m_context{services, ports, [this] { refreshAll(); }}, m_layouts(m_context),
      m_shortcuts(m_context), m_general(m_context), m_about(m_context) {}

SettingsWindowController::~SettingsWindowController() = default;

std::optional<SettingsWindowController::Tab> SettingsWindowController::tab(int rawValue) {
    if (rawValue < 0 || rawValue > static_cast<int>(Tab::About))
        return std::nullopt;
    return static_cast<Tab>(rawValue);
}

void SettingsWindowController::show(std::optional<Tab> tab) {
    if (!m_window)
        makeWindow();
    if (!isOnScreen(*m_window))
        center(*m_window);
    refreshAll();
    if (tab)
        m_tabs->setCurrentIndex(static_cast<int>(*tab));
    // A back end may move the window to the user, whereas some window managers show the desktop on which it
    // was minimised.
    if (m_window->isMinimized())
        m_ports.application.activate();
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    m_ports.application.activate(); // last, because a back end may know better than Qt how to come to front
}

void SettingsWindowController::refreshAll() {
    m_layouts.refresh();
    m_shortcuts.refresh();
    m_general.refresh();
}

void SettingsWindowController::makeWindow() {
    // The user may have changed something elsewhere meanwhile that no desktop reports.
    m_window = std::make_unique<Window>([this] {
        m_context.services.hotKeys.retryTaken();
        m_general.refreshSystemStates();
    });
    m_window->setWindowTitle(title());
    m_window->setFont(systemFont(13));
    m_window->setFixedSize(kWindowSize);
    m_tabs = new QTabWidget(m_window.get());
    m_tabs->setGeometry(kTabsFrame);
    // The tab bar takes the focus instead, because it has an accessible name for every tab. It is the focus
    // proxy of the tab widget, whose setter changes its policy, too.
    m_tabs->setFocusPolicy(Qt::NoFocus);
    m_tabs->tabBar()->setFocusPolicy(Qt::StrongFocus);
    addTab(*m_layouts.view(), QStringLiteral("Layouts"));
    addTab(*m_shortcuts.view(), QStringLiteral("Shortcuts"));
    addTab(*m_general.view(), QStringLiteral("General"));
    addTab(*m_about.view(), QStringLiteral("About"));
    // On a Mac, Qt::CTRL is the Command key.
    addShortcut(*m_window, Qt::CTRL | Qt::Key_W, [this] { m_window->close(); });
    addShortcut(*m_window, Qt::CTRL | Qt::Key_Q, [this] { m_ports.application.terminate(); });
    center(*m_window);
}

/// Appends a tab titled `label`, which is also the object name of its page.
void SettingsWindowController::addTab(QWidget& view, const QString& label) {
    auto* const page = new QWidget(m_tabs);
    page->setObjectName(label);
    view.setParent(page);
    view.setGeometry(QRect(kViewOrigin, kTabSize));
    m_tabs->addTab(page, label);
}

} // namespace tessarel
