#include "platform/qt/qt_alerts.h"

#include "platform/qt/alert_dialog.h"

#include <QLineEdit>
#include <QString>

namespace tessarel::qt {

std::size_t QtAlerts::runModal(const Alert& alert) {
    return AlertDialog(alert).run();
}

std::optional<std::string> QtAlerts::runModalForText(const Alert& alert) {
    AlertDialog dialog(alert);
    const QLineEdit& field = dialog.addField();
    if (dialog.run() != 0)
        return std::nullopt;
    return field.text().toStdString();
}

} // namespace tessarel::qt
