// SPDX-License-Identifier: MIT

#pragma once

#include "model/lifetime.h"
#include "ports/alerts_port.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

class QWidget;

namespace tessarel::qt {

class AlertDialog;

/// Alerts in Qt dialogs.
class QtAlerts : public AlertsPort {
public:
    /// Callbacks around the showing of a dialog.
    struct Hooks {
        /// Called before the dialog's widgets are created.
        std::function<void()> beforeMaking = [] {};
        /// Called with the visible dialog.
        std::function<void(QWidget& box)> shown = [](QWidget&) {};
    };

    QtAlerts() : QtAlerts(Hooks()) {}
    explicit QtAlerts(Hooks hooks);

    ~QtAlerts() override;

    /// An alert without buttons gets one titled "OK". Quitting the application removes the dialog.
    [[nodiscard]] SubscriptionPtr show(const Alert& alert, Closed closed) override;
    /// Runs a nested event loop until the dialog is closed. An alert without buttons gets one titled "OK".
    void runModal(const Alert& alert) override;
    /// Runs a nested event loop until the dialog is closed. Returns the typed text if the first button was
    /// clicked, otherwise `std::nullopt`.
    std::optional<std::string> runModalForText(const Alert& alert) override;

private:
    /// Reports the end of a dialog that `show` has opened.
    void finish(int number, int result, const Closed& closed);

    Hooks m_hooks;
    std::map<int, std::unique_ptr<AlertDialog>> m_open; ///< by `show`, with their numbers
    int m_lastNumber = 0;
    Lifetime m_lifetime; // watched by subscriptions, which may outlive this object
};

} // namespace tessarel::qt
