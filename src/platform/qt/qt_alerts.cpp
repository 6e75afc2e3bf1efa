#include "platform/qt/qt_alerts.h"

#include "platform/qt/alert_dialog.h"

#include <QLineEdit>
#include <QString>

#include <utility>

namespace tessarel::qt {

QtAlerts::QtAlerts(std::function<void()> beforeShowing) : m_beforeShowing(std::move(beforeShowing)) {}

std::size_t QtAlerts::runModal(const Alert& alert) {
    m_beforeShowing();
    return AlertDialog(alert).run();
}

std::optional<std::string> QtAlerts::runModalForText(const Alert& alert) {
    m_beforeShowing();
    AlertDialog dialog(alert);
    const QLineEdit& field = dialog.addField();
    if (dialog.run() != 0)
        return std::nullopt;
    return field.text().toStdString();
}

} // namespace tessarel::qt
