#pragma once

#include "ports/alerts_port.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

class QWidget;

namespace tessarel::qt {

/// Messages in a box of Qt's.
class QtAlerts : public AlertsPort {
public:
    /// What is to be done beside showing a box.
    struct Hooks {
        std::function<void()> beforeMaking = [] {};
        std::function<void(QWidget& box)> shown = [](QWidget&) {}; ///< before its loop begins
    };

    QtAlerts() : QtAlerts(Hooks()) {}
    explicit QtAlerts(Hooks hooks);

    /// Runs a loop of its own until the box is closed. An alert without buttons gets "OK", and answers 0.
    std::size_t runModal(const Alert& alert) override;
    std::optional<std::string> runModalForText(const Alert& alert) override;

private:
    Hooks m_hooks;
};

} // namespace tessarel::qt
