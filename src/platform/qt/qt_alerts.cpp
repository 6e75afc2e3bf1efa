#include "platform/qt/qt_alerts.h"

#include "platform/qt/alert_dialog.h"

#include <QLineEdit>
#include <QString>

#include <utility>

namespace tessarel::qt {

QtAlerts::QtAlerts(Hooks hooks) : m_hooks(std::move(hooks)) {}

std::size_t QtAlerts::runModal(const Alert& alert) {
    m_hooks.beforeMaking();
    AlertDialog dialog(alert);
    m_shown.push_back({&alert, &dialog});
    const std::size_t button = dialog.run(m_hooks.shown);
    m_shown.pop_back();
    return button;
}

void QtAlerts::dismiss(const Alert& alert) {
    for (const Shown& shown : m_shown) {
        if (*shown.alert == alert)
            shown.dialog->reject();
    }
}

std::optional<std::string> QtAlerts::runModalForText(const Alert& alert) {
    m_hooks.beforeMaking();
    AlertDialog dialog(alert);
    const QLineEdit& field = dialog.addField();
    if (dialog.run(m_hooks.shown) != 0)
        return std::nullopt;
    return field.text().toStdString();
}

} // namespace tessarel::qt
