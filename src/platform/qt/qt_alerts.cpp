// SPDX-License-Identifier: MIT

#include "platform/qt/qt_alerts.h"

#include "model/call_on_end.h"
#include "platform/qt/alert_dialog.h"

#include <QApplication>
#include <QLineEdit>
#include <QObject>
#include <QString>
#include <QWidget>
#include <QWidgetList>

#include <algorithm>
#include <utility>

namespace tessarel::qt {

namespace {

/// Returns the settings window; null if it is not shown.
QWidget* settingsWindow() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto found = std::ranges::find_if(windows, [](const QWidget* window) {
        // The other windows, of the tray icon, the overlay and menus, have no frame.
        return window->isVisible() && window->windowType() == Qt::Window &&
               !window->windowFlags().testFlag(Qt::FramelessWindowHint) &&
               !dynamic_cast<const AlertDialog*>(window);
    });
    return found == windows.end() ? nullptr : *found;
}

} // namespace

QtAlerts::QtAlerts(Hooks hooks) : m_hooks(std::move(hooks)) {}

QtAlerts::~QtAlerts() = default;

SubscriptionPtr QtAlerts::show(const Alert& alert, Closed closed) {
    m_hooks.beforeMaking();
    const int number = ++m_lastNumber;
    AlertDialog& dialog = *m_open.emplace(number, std::make_unique<AlertDialog>(alert)).first->second;
    QObject::connect(
        &dialog, &QDialog::finished, &dialog,
        [this, number, closed = std::move(closed)](int result) { finish(number, result, closed); });
    // The owner of the subscription may outlive the application object, which a dialog must not.
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &dialog,
                     [this, number] { m_open.erase(number); });
    dialog.present(m_hooks.shown);
    return callOnEnd([this, alive = m_lifetime.watch(), number] {
        if (!alive.expired())
            m_open.erase(number);
    });
}

void QtAlerts::finish(int number, int result, const Closed& closed) {
    const auto ended = m_open.extract(number);
    if (ended.empty())
        return;
    ended.mapped().release()->deleteLater(); // later, because this is its own signal
    closed(AlertDialog::buttonOf(result));
}

void QtAlerts::runModal(const Alert& alert) {
    m_hooks.beforeMaking();
    AlertDialog dialog(alert, settingsWindow());
    static_cast<void>(dialog.run(m_hooks.shown));
}

std::optional<std::string> QtAlerts::runModalForText(const Alert& alert) {
    m_hooks.beforeMaking();
    AlertDialog dialog(alert, settingsWindow());
    const QLineEdit& field = dialog.addField();
    if (dialog.run(m_hooks.shown) != 0U)
        return std::nullopt;
    return field.text().toStdString();
}

} // namespace tessarel::qt
