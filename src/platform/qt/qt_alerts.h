#pragma once

#include "ports/alerts_port.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tessarel::qt {

/// Messages in a box of Qt's.
class QtAlerts : public AlertsPort {
public:
    /// `beforeShowing` is called before each box is made.
    explicit QtAlerts(std::function<void()> beforeShowing = [] {});

    /// Runs a loop of its own until the box is closed. An alert without buttons gets "OK", and answers 0.
    std::size_t runModal(const Alert& alert) override;
    std::optional<std::string> runModalForText(const Alert& alert) override;

private:
    std::function<void()> m_beforeShowing;
};

} // namespace tessarel::qt
