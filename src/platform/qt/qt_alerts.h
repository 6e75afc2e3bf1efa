#pragma once

#include "ports/alerts_port.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace tessarel::qt {

class AlertDialog;

/// Modal alerts in Qt dialogs.
class QtAlerts : public AlertsPort {
public:
    /// Callbacks around the showing of a dialog.
    struct Hooks {
        /// Called before the dialog's widgets are created.
        std::function<void()> beforeMaking = [] {};
        /// Called with the visible dialog before its event loop starts.
        std::function<void(QWidget& box)> shown = [](QWidget&) {};
    };

    QtAlerts() : QtAlerts(Hooks()) {}
    explicit QtAlerts(Hooks hooks);

    /// Runs a nested event loop until the dialog is closed. An alert without buttons gets one titled "OK",
    /// which returns 0.
    std::size_t runModal(const Alert& alert) override;
    void dismiss(const Alert& alert) override;
    /// Runs a nested event loop until the dialog is closed. Returns the typed text if the first button was
    /// clicked, otherwise `std::nullopt`.
    std::optional<std::string> runModalForText(const Alert& alert) override;

private:
    struct Shown {
        const Alert* alert;
        AlertDialog* dialog;
    };

    Hooks m_hooks;
    std::vector<Shown> m_shown; ///< by `runModal`, the innermost last
};

} // namespace tessarel::qt
