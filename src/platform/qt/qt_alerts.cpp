#include "platform/qt/qt_alerts.h"

#include "platform/qt/alert_dialog.h"

namespace tessarel::qt {

std::size_t QtAlerts::runModal(const Alert& alert) {
    return AlertDialog(alert).run();
}

} // namespace tessarel::qt
